"""Whether what a disturbed command left, and what it said, is allowed."""

import json
import re

from world import CATALOGUE, LISTED_IN_CATALOGUE, ON_DEMAND, PROJECT, next_commands


class Judge:
    """Compares what a disturbed command left and said with what it may leave and say."""

    def __init__(self, world, reference, state, outcome):
        self.world, self.reference, self.state, self.outcome = world, reference, state, outcome
        self.before, self.after = reference.before, reference.after
        self.faults = []

    def fault(self, kind, text):
        self.faults.append((kind, text))

    def unchanged(self, store):
        return self.state.stores.get(store) == self.before.stores.get(store)

    def changed(self, store):
        return self.state.stores.get(store) == self.after.stores.get(store)

    def stores(self):
        """Each store is what it was or what it becomes."""
        for store in sorted(set(self.state.stores) | set(self.before.stores)):
            if not self.unchanged(store) and not self.changed(store):
                now = self.state.stores.get(store, "nothing")
                self.fault("lost", f"{store} is neither before nor after: {now[:300]}")

    def outside(self):
        if self.state.outside != self.before.outside:
            changed = set(self.state.outside.items()) ^ set(self.before.outside.items())
            self.fault("outside", f"{sorted(path for path, _ in changed)} changed")

    def files(self, may_wait):
        """Files go only with their item, and change only to what they become.

        With `may_wait` they may be in the trash, from where the next change brings them back.
        """
        lists = CATALOGUE if self.reference.name in LISTED_IN_CATALOGUE else PROJECT
        before, after, now = (state.everything() if may_wait else state.tree
                              for state in (self.before, self.after, self.state))
        other = [path for path in now
                 if now[path] not in (before.get(path, after.get(path)), after.get(path))]
        gone = [path for path in before.keys() - now.keys() if path in after or not self.changed(lists)]
        new = now.keys() - before.keys() - after.keys()
        other = set(other) - new
        for kind, paths, what in (("lost", other, "hold something else"), ("lost", gone, "are gone"),
                                  ("wrong", new, "are new")):
            if paths:
                self.fault(kind, f"{sorted(paths)} {what}")

    def trash(self):
        """What was deleted can be brought back, until the trash is emptied."""
        gone = self.before.everything().keys() - self.state.everything().keys()
        gone &= self.after.everything().keys()
        new = self.state.trash.keys() - self.before.trash.keys() - self.after.trash.keys()
        for paths, what in (gone, "are not in the trash"), (new, "are in the trash"):
            if paths:
                self.fault("lost", f"{sorted(paths)} {what}")

    def done(self):
        """What was reported done is done, and nothing else."""
        for store in self.after.stores:
            if not self.changed(store):
                self.fault("lost", f"status 0, and {store} is {self.state.stores.get(store)!r:.300}")
        now, after = self.state.tree, self.after.tree
        other = [path for path, content in after.items()
                 if now.get(path, "gone") != content and not ON_DEMAND.search(path)]
        if other:
            self.fault("lost", f"status 0, and {sorted(other)} are not as they become")
        told = "still there" in self.outcome.out
        new = sorted(now.keys() - after.keys())
        self.trash()
        if bool(new) != told:
            self.fault("wrong", f"status 0, and {new or 'nothing'} stays, but it says {self.outcome.out}")
        if not told and not self.tells_why_unknown() and self.world.plain(self.outcome.out) != self.reference.out:
            self.fault("wrong", f"status 0, and it says {self.outcome.out!r:.300}")

    def tells_why_unknown(self):
        """Whether it is the status, which says of what can't be read just that."""
        if self.reference.name == "status" and "can't be looked at now" in self.outcome.err:
            return re.search(r"^Working directory found: +-$", self.outcome.out, re.MULTILINE) is not None
        state = re.search(r"^Registry state: +(\w+)", self.outcome.out, re.MULTILINE)
        is_bad = state is not None and state[1] != "ready"
        return self.reference.name == "status" and is_bad and "The registry" in self.outcome.err

    def refused(self, cleans_up):
        """What a command says that did not do its work is true."""
        said = self.outcome.err + self.outcome.out
        if self.outcome.status in (2, 3, 4):
            self.fault("wrong", f"status {self.outcome.status}: {said}")
        if "what it was before" in said and not self.unchanged(PROJECT):
            self.fault("wrong", f"the project changed: {said}")
        before = all(self.unchanged(store) for store in self.state.stores)
        if "Nothing was" in said and not (before and self.state.tree == self.before.tree):
            self.fault("wrong", f"something changed: {said}")
        left = self.state.tree.keys() - self.before.tree.keys()
        left |= self.state.trash.keys() - self.before.trash.keys()
        if self.reference.name == "init":
            # The next try goes on with the folders that are there.
            left = {path for path in left if self.state.tree.get(path) is not None}
        if cleans_up and before and left:
            self.fault("wrong", f"nothing is saved, but {sorted(left)} stay: {said}")

    def all(self, cleans_up):
        if self.outcome.status == -1 or self.outcome.status >= 128:
            self.fault("crashed", f"status {self.outcome.status}: {self.outcome.err}")
        self.outside()
        self.stores()
        if self.outcome.status == 0:
            self.done()
        else:
            self.files(may_wait=not cleans_up)
            self.refused(cleans_up)
        return self.faults


    def aftermath(self):
        """After an end at any moment: the next commands run, and find each store as it was or becomes."""
        self.outside()
        self.stores()
        was_unfinished = self.state.is_unfinished
        said, faults = next_commands(self.world)
        self.faults += faults
        if was_unfinished and "was interrupted" not in said:
            self.fault("wrong", "a change was interrupted, and nobody says so")
        self.state = self.world.state()
        self.stores()
        self.outside()
        self.files(may_wait=False)
        self.trash()
        if self.state.is_unfinished:
            self.fault("wrong", "a change is still not taken back")
        self.pair(said)
        return self.faults

    def pair(self, said):
        """A study area in use that the catalogue does not have is told of."""
        try:
            current = json.loads(self.state.stores[PROJECT])["state"].get("Study Area Name", "")
        except (ValueError, KeyError):
            return  # found damaged or missing before
        listed = f'NAME="_{current}_"' in self.state.stores[CATALOGUE]
        told = any(f"works in the study area {current}, which is {what}" in said
                   for what in ("not in the list", "named"))
        if current and not listed and not told:
            self.fault("wrong", f"{current} is in use, not in the catalogue, and nobody says so")
