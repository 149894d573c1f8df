// The ways in which the objects of the component report failures to their data manager.
#pragma once

#include <memory>
#include <string_view>

#include "items/friends.h"
#include "util/error_sink.h"

namespace kvdm {

// Calls the report by name. The data manager publishes no operation of that name, so every report
// ends in run-time error 438, and in 91 when there is no data manager. The error carries the
// message and, nested, the failure to be reported.
class LateBoundSink final : public ErrorSink {
 public:
  explicit LateBoundSink(DataManagerRef target) : target_(std::move(target)) {}
  void Report(std::string_view message) const override;

 private:
  DataManagerRef target_;
};

// As LateBoundSink with a data manager; drops the report when there is none.
class LateBoundIfBoundSink final : public ErrorSink {
 public:
  explicit LateBoundIfBoundSink(DataManagerRef target) : target_(std::move(target)) {}
  void Report(std::string_view message) const override;

 private:
  DataManagerRef target_;
};

// Shows the report at once. Run-time error 91 when there is no data manager.
class DirectSink final : public ErrorSink {
 public:
  explicit DirectSink(DataManagerRef target) : target_(std::move(target)) {}
  void Report(std::string_view message) const override;

 private:
  DataManagerRef target_;
};

// Shows the report at once; drops it when there is no data manager.
class DirectIfBoundSink final : public ErrorSink {
 public:
  explicit DirectIfBoundSink(DataManagerRef target) : target_(std::move(target)) {}
  void Report(std::string_view message) const override;

 private:
  DataManagerRef target_;
};

// How one class of objects reports: makes the sink for its data manager.
using SinkFactory = std::unique_ptr<ErrorSink> (*)(DataManagerRef);

template <class Sink>
std::unique_ptr<ErrorSink> MakeSink(DataManagerRef target) {
  return std::make_unique<Sink>(std::move(target));
}

}  // namespace kvdm
