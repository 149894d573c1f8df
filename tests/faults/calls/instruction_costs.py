#!/usr/bin/env python3
"""A guard that does not time: the instructions that the tree takes, counted by callgrind, against recorded values.

instruction_costs.py PROGRAM RECORD             compares; the status is 0 when nothing differs by more than 5 %
instruction_costs.py PROGRAM RECORD --record    writes the record anew

What takes less is to be recorded too, or it could grow back unseen.
"""
import pathlib
import re
import subprocess
import sys
import tempfile

TOLERATED = 0.05


def counted(program):
    with tempfile.TemporaryDirectory() as folder:
        subprocess.run(['valgrind', '--quiet', '--tool=callgrind', f'--callgrind-out-file={folder}/out', program], check=True,
                       stdout=subprocess.DEVNULL)
        counts = {}
        for dump in pathlib.Path(folder).iterdir():
            text = dump.read_text()
            case = re.search(r'^desc: Trigger: Client Request: (.*)$', text, re.MULTILINE)
            if case:
                counts[case.group(1)] = int(re.search(r'^totals: (\d+)$', text, re.MULTILINE).group(1))
        return counts


def main(program, record, *options):
    record = pathlib.Path(record)
    counts = counted(program)
    if options == ('--record',):
        record.write_text(''.join(f'{case}\t{count}\n' for case, count in sorted(counts.items())))
        return 0
    recorded = {case: int(count) for case, count in (line.split('\t') for line in record.read_text().splitlines())}
    wrong = [case for case in sorted(counts.keys() | recorded.keys())
             if abs(counts.get(case, 0) - recorded.get(case, 0)) > TOLERATED * recorded.get(case, 0)]
    for case in wrong:
        print(f'{case}: {counts.get(case, "not counted")} instructions, recorded are {recorded.get(case, "none")}')
    return 1 if wrong or not counts else 0


if __name__ == '__main__':
    sys.exit(main(*sys.argv[1:]))
