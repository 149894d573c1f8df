// Loads the shared library at run time and creates an object through its one exported function.
#include <dlfcn.h>

#include <iostream>

#include "datamanager/interfaces.h"
#include "library/kvdm_library.h"

int main(int argc, char** argv) {
  if (argc != 2) return std::cerr << "usage: load_at_run_time libkvdm.so\n", 2;
  void* library = dlopen(argv[1], RTLD_NOW);
  if (library == nullptr) return std::cerr << dlerror() << '\n', 1;
  const auto create =
      reinterpret_cast<decltype(&KvdmCreateObject)>(dlsym(library, "KvdmCreateObject"));
  if (create == nullptr) return std::cerr << dlerror() << '\n', 1;

  std::shared_ptr<kvdm::Unknown> object;
  if (create("KVDM.KVFileInfo", nullptr, &object) != 0) return 1;
  const auto path = kvdm::Query<kvdm::IKVFileInfo>(object);
  path->SetFullPath("C:\\data\\archive.tar.gz");
  std::cout << path->FileName() << " | " << path->FileNameExtension() << '\n';
  return path->FileName() == "archive.tar" ? 0 : 1;
}
