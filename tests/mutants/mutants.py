#!/usr/bin/env python3
"""Changes the library line by line and tells which changes no test notices. See README.md beside it."""
import argparse
import hashlib
import json
import random
import sys
import time
from pathlib import Path

from lexer import Source
from operators import draw
from workshop import Workshop

HERE = Path(__file__).resolve().parent
ROOT = HERE.parent.parent


def equivalents(path=HERE / 'equivalent.txt'):
    """The changes shown to change nothing: (file, line, changed line) to the reason."""
    found, reason, name, before = {}, [], None, None
    for line in path.read_text().split('\n'):
        kind, rest = line[:2], line[2:].strip()
        if kind == '# ':
            if name:
                reason, name = [], None
            reason.append(rest)
        elif kind == '@ ':
            name = rest
        elif kind == '- ':
            before = rest
        elif kind == '+ ':
            found[(name, before, rest)] = ' '.join(reason)
        elif line.strip() not in ('', '+'):
            raise SystemExit(f'{path}: what is "{line}"?')
        elif line.strip() == '+':
            found[(name, before, '')] = ' '.join(reason)
    return found


def sources_to_change(workshop, wanted, reach, only):
    """The library's sources that are compiled here, and headers that few enough objects include."""
    sources = []
    for name in sorted(wanted):
        if name.endswith(('.cpp', '.h')) and any(name.startswith(folder + '/') for folder in workshop.folders):
            if 1 <= workshop.dependants.get(name, 0) <= reach and (not only or name.startswith(tuple(only))):
                sources.append(Source(name, (workshop.source / name).read_text()))
    return sources


def digest(workshop, names):
    made = hashlib.sha256()
    for name in sorted(names):
        made.update(name.encode() + b'\0' + (workshop.source / name).read_bytes() + b'\0')
    return made.hexdigest()[:16]


class Log:
    """What was found so far, one line each. A killed mutant stays killed; a survivor is asked again when tests changed."""

    def __init__(self, path, library, tests):
        self.path, self.library, self.tests = path, library, tests
        self.known = {}
        if path.exists():
            for line in path.read_text().split('\n'):
                if line:
                    entry = json.loads(line)
                    if entry['library'] == library:
                        self.known[self._key(entry)] = entry

    @staticmethod
    def _key(entry):
        return entry['file'], entry['line'], entry['before'], entry['after']

    def find(self, mutant):
        entry = self.known.get((mutant.path, mutant.line, mutant.before, mutant.after))
        return entry if entry and (entry['result'] != 'survived' or entry['tests'] == self.tests) else None

    def add(self, mutant, result, killer, seconds):
        entry = {'library': self.library, 'tests': self.tests, 'file': mutant.path, 'line': mutant.line,
                 'operator': mutant.operator, 'before': mutant.before, 'after': mutant.after, 'result': result,
                 'killer': killer, 'seconds': round(seconds, 1)}
        self.known[self._key(entry)] = entry
        with self.path.open('a') as out:
            out.write(json.dumps(entry) + '\n')
        return entry


def attempt(workshop, log, mutant, jobs):
    began = time.monotonic()
    place = workshop.source / mutant.path
    text = place.read_text()
    try:
        place.write_text(text[:mutant.start] + mutant.put + text[mutant.end:])
        killer = None
        if not workshop.compiles():
            result = 'not compiled'
        else:
            killer = workshop.killer(mutant.path, jobs)
            result = 'killed' if killer else 'survived'
    finally:
        place.write_text(text)
    return log.add(mutant, result, killer, time.monotonic() - began)


def show(number, entry):
    print(f"{number:4} {entry['result']:12} {entry['seconds']:6.1f} s  {entry['file']}:{entry['line']} ({entry['operator']})"
          f"  {entry['killer'] or ''}", flush=True)
    if entry['result'] == 'survived':
        print(f"       - {entry['before']}\n       + {entry['after']}", flush=True)


def report(folders, entries, listed, seconds):
    counted = [e for e in entries if e['result'] in ('killed', 'survived')]
    survivors = [e for e in counted if e['result'] == 'survived']
    print(f'\n{"folder":22}{"killed":>8}{"survived":>10}{"not compiled":>14}{"changes nothing":>17}{"seconds":>9}')
    for folder in [*folders, '']:
        mine = [e for e in entries if e['file'].startswith(folder)]
        number = lambda result: sum(e['result'] == result for e in mine)
        equal = sum(m.path.startswith(folder) for m in listed)
        print(f'{folder or "all":22}{number("killed"):8}{number("survived"):10}{number("not compiled"):14}{equal:17}'
              f'{sum(e["seconds"] for e in mine):9.0f}')
    print(f'\n{seconds:.0f} s in this run.')
    if survivors:
        print(f'{len(survivors)} of {len(counted)} survived:')
    for e in survivors:
        print(f"{e['file']}:{e['line']} ({e['operator']})\n  - {e['before']}\n  + {e['after']}")
    return 1 if 20 * len(survivors) > len(counted) else 0


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument('count', type=int, help='how many changes to try that compile')
    parser.add_argument('seed', type=int, nargs='?', default=1)
    parser.add_argument('--jobs', type=int, default=1, help='test programs side by side')
    parser.add_argument('--reach', type=int, default=10, help='headers that more objects than this include are left alone')
    parser.add_argument('--only', action='append', metavar='PATH', help='only sources whose name begins so')
    parser.add_argument('--folder', default=ROOT / 'build' / 'mutants', help='where the copy is built')
    options = parser.parse_args()

    began = time.monotonic()
    workshop = Workshop(ROOT, options.folder)
    wanted = workshop.bring_sources()
    print('Building the library as it is, and its tests.', flush=True)
    workshop.prepare()
    times_file = workshop.folder / 'times.json'
    times = json.loads(times_file.read_text()) if times_file.exists() else {}
    workshop.measure(times)
    times_file.write_text(json.dumps(times, indent=1))

    is_library = lambda name: name.startswith(tuple(folder + '/' for folder in workshop.folders))
    log = Log(workshop.folder / 'log.jsonl', digest(workshop, filter(is_library, wanted)),
              digest(workshop, (n for n in wanted if n.startswith('tests/') and not n.startswith('tests/mutants/'))))
    known_equal = equivalents()
    entries, listed, tried = [], [], 0
    for mutant in draw(sources_to_change(workshop, wanted, options.reach, options.only), random.Random(options.seed)):
        if tried == options.count:
            break
        if (mutant.path, mutant.before, mutant.after) in known_equal:
            listed.append(mutant)
            continue
        entry = log.find(mutant)
        if not entry:
            entry = attempt(workshop, log, mutant, options.jobs)
            show(tried + (entry['result'] != 'not compiled'), entry)
        entries.append(entry)
        tried += entry['result'] != 'not compiled'
    return report(workshop.folders, entries, listed, time.monotonic() - began)


if __name__ == '__main__':
    sys.exit(main())
