"""Checks that say what they found."""


def check(what, holds):
    print(("ok " if holds else "FAILED ") + what)
    return holds


def check_same(what, wanted, found):
    """Compares two dictionaries, and shows where they differ."""
    if check(what, wanted == found):
        return True
    for place in sorted(wanted.keys() | found.keys()):
        if wanted.get(place) != found.get(place):
            print(f"  {place}: wanted {wanted.get(place)!r}, found {found.get(place)!r}")
    return False
