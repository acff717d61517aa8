"""A copy of the sources with a build of its own, in which changes are compiled and tested."""
import copy
import json
import os
import resource
import signal
import subprocess
import time
from concurrent.futures import ThreadPoolExecutor, FIRST_COMPLETED, wait
from pathlib import Path

# Left out: what reads no more than the sources, and what builds the library anew.
LEFT_OUT = {'test_house', 'package_test', 'test_mutants'}
# Tests that stand in no folder of the library run through these folders; those of any other name, through all.
SUPPORT = ['foundation', 'geometry', 'canvas']
# These wait for a virtual X server. They serve the sources that speak to one, and what they say is asked for twice.
NEEDS_SCREEN = {'test_platform_sdl', 'test_krsview_window'}
SCREEN_SOURCES = 'platform/portable/windows/sdl/'
SLOW_TEST = 0.2  # seconds; slower tests run when all quick ones have passed
MEMORY_LIMIT = 8 << 30  # bytes; a change must not take the machine down


def read_folders(root):
    """The library's folders, each with those that it may include, from the list that the build is made by."""
    reach = {}
    for line in (Path(root) / 'cmake' / 'folders.txt').read_text().split('\n'):
        if line and not line.startswith('#'):
            name, library, *included = line.split()
            if library == '-':
                continue  # a room of the folder around it
            reach[name] = {name}.union(*(reach[one] for one in included))
    return reach


class Workshop:
    def __init__(self, root, folder):
        self.root = Path(root)
        self.folder = Path(folder)
        self.source = self.folder / 'src'
        self.build = self.source / 'build' / 'dev'
        self.temporary = self.folder / 'tmp'
        self.temporary.mkdir(parents=True, exist_ok=True)
        self.programs = []
        self.folders = read_folders(root)

    def bring_sources(self):
        """Copies what the working tree holds, and touches only files that differ."""
        listed = subprocess.run(['git', 'ls-files', '-co', '--exclude-standard', '-z'], cwd=self.root, check=True,
                                stdout=subprocess.PIPE).stdout.decode().split('\0')
        wanted = {name for name in listed if name and (self.root / name).is_file()}
        for name in sorted(wanted):
            content = (self.root / name).read_bytes()
            to = self.source / name
            if not to.is_file() or to.read_bytes() != content:
                to.parent.mkdir(parents=True, exist_ok=True)
                to.write_bytes(content)
                to.chmod((self.root / name).stat().st_mode)
        for path in list(self.source.rglob('*')):
            name = path.relative_to(self.source).as_posix()
            if path.is_file() and not name.startswith('build/') and name not in wanted:
                path.unlink()
        return wanted

    def prepare(self):
        """Builds everything and reads what there is to run. Ends with what the compiler said if that fails."""
        subprocess.run(['cmake', '--preset', 'dev', '-DKRS_TESTS=ON', '-DKRS_ONE_LIBRARY=ON', '--log-level=WARNING',
                        '-DCMAKE_SHARED_LINKER_FLAGS=' + ('-fuse-ld=lld' if _has('ld.lld') else '')],
                       cwd=self.source, check=True, stdout=subprocess.DEVNULL)
        if not self.compiles():
            raise SystemExit(self.said[-5000:] + '\nThe library cannot be built as it is; nothing was tried.')
        shown = subprocess.run(['ctest', '--show-only=json-v1'], cwd=self.build, check=True, stdout=subprocess.PIPE).stdout
        self.programs = [Program(test, self) for test in json.loads(shown)['tests'] if test['name'] not in LEFT_OUT]
        self._read_dependants()

    def _read_dependants(self):
        """How many objects each source is compiled into."""
        shown = subprocess.run(['ninja', '-C', str(self.build), '-t', 'deps'], check=True, stdout=subprocess.PIPE)
        self.dependants = {}
        prefix = os.path.realpath(self.source) + '/'
        for line in shown.stdout.decode().split('\n'):
            if line.startswith('    '):
                path = os.path.realpath(self.build / line.strip())
                if path.startswith(prefix):
                    name = path[len(prefix):]
                    self.dependants[name] = self.dependants.get(name, 0) + 1

    def compiles(self):
        """Builds what the changed source asks for, and tells whether it could be built."""
        done = subprocess.run(['ninja', '-C', str(self.build), '-j1'], stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        self.said = done.stdout.decode(errors='replace')
        return done.returncode == 0

    def measure(self, times):
        """Runs programs that are newer than their measured time, which must pass, and parts the slow tests from the quick."""
        for program in self.programs:
            if times.get(program.name, {}).get('built') != program.built():
                times[program.name] = self._measured(program)
        self.programs = [part for program in self.programs for part in program.parts(times[program.name])]

    def _measured(self, program):
        began = time.monotonic()
        before = resource.getrusage(resource.RUSAGE_CHILDREN)
        told = self.temporary / 'tests.json'
        if program.run(600, extra=['--gtest_output=json:' + str(told)] if program.is_gtest else []) != 'passed':
            raise SystemExit(program.name + ' fails without any change; nothing was tried. Run ' + program.command[0])
        after = resource.getrusage(resource.RUSAGE_CHILDREN)
        slow = {}
        if program.is_gtest:
            for suite in json.loads(told.read_text())['testsuites']:
                for test in suite['testsuite']:
                    if float(test['time'].rstrip('s')) > SLOW_TEST:
                        slow[suite['name'] + '.' + test['name']] = float(test['time'].rstrip('s'))
        return {'built': program.built(), 'seconds': round(time.monotonic() - began, 3), 'slow': slow,
                'work': round(after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime, 3)}

    def order(self, path):
        """The programs that a change of this source may make fail, nearest and then cheapest first."""
        fits = [p for p in self.programs
                if any(path.startswith(floor + '/') for floor in p.floors) and
                (p.name not in NEEDS_SCREEN or path.startswith(SCREEN_SOURCES))]
        return sorted(fits, key=lambda p: (p.name in NEEDS_SCREEN, p.is_slow, -_common(p.folder, path), p.work))

    def killer(self, path, jobs=1):
        """The name of the program that fails, or nothing."""
        queue = self.order(path)
        if jobs == 1:
            return next((p.name + ' ' + what for p in queue if (what := p.verdict()) != 'passed'), None)
        with ThreadPoolExecutor(jobs) as pool:
            running, found = {}, None
            while (queue or running) and not found:
                while queue and len(running) < jobs:
                    program = queue.pop(0)
                    running[pool.submit(program.verdict)] = program
                for one in wait(running, return_when=FIRST_COMPLETED).done:
                    program = running.pop(one)
                    if one.result() != 'passed':
                        found = found or program.name + ' ' + one.result()
            for program in running.values():
                program.stop()
            return found


class Program:
    """A test program, as ctest would run it."""

    def __init__(self, test, workshop):
        properties = {p['name']: p['value'] for p in test.get('properties', [])}
        self.name = test['name']
        self.command = test['command']
        self.where = properties.get('WORKING_DIRECTORY', str(workshop.build))
        self.environment = dict(os.environ, TMPDIR=str(workshop.temporary))
        self.environment.update(pair.split('=', 1) for pair in properties.get('ENVIRONMENT', []))
        inside = os.path.relpath(os.path.dirname(self.command[0]), workshop.build / 'tests').replace(os.sep, '/')
        self.folder = inside
        near = [name for name in workshop.folders if inside == name or inside.startswith(name + '/')]
        self.floors = SUPPORT if inside == 'support' else workshop.folders[max(near, key=len)] if near else workshop.folders
        self.seconds = 0.0  # by the clock; a busy machine makes them more
        self.work = 0.0  # seconds of the processor
        self.process = None
        self.tests = []  # a filter of tests
        self.is_slow = False
        self.is_gtest = '--gtest_brief=1' in self.command

    def built(self):
        return os.path.getmtime(self.command[0])

    def parts(self, times):
        """This program, or its quick tests and its slow ones as two."""
        self.seconds, self.work = times['seconds'], times['work']
        slow = sum(times['slow'].values())
        if slow < 2 * SLOW_TEST or self.name in NEEDS_SCREEN:
            return [self]
        parts = copy.copy(self), copy.copy(self)
        names = ':'.join(times['slow'])
        for part, is_slow in zip(parts, (False, True)):
            part.is_slow = is_slow
            part.tests = ['--gtest_filter=' + ('' if is_slow else '-') + names]
            part.seconds = slow if is_slow else max(self.seconds - slow, 0)
            # The processor's part of the time is taken to be the same in both.
            part.work = self.work * part.seconds / self.seconds
        return list(parts)

    def verdict(self):
        """passed, failed, crashed or hung. A program with a screen may fail by chance, so it has to do so twice."""
        limit = 5 * self.seconds + 5
        what = self.run(limit, 5 * self.work + 5)
        return self.run(limit, 5 * self.work + 5) if what != 'passed' and self.name in NEEDS_SCREEN else what

    def run(self, limit, work=3600, extra=()):
        command = self.command + (['--gtest_fail_fast'] if self.is_gtest else []) + self.tests + list(extra)
        self.process = subprocess.Popen(command, cwd=self.where, env=self.environment, stdin=subprocess.DEVNULL,
                                        stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, start_new_session=True,
                                        preexec_fn=lambda: _set_limits(int(work)))
        try:
            status = self.process.wait(limit)
        except subprocess.TimeoutExpired:
            status = None
        self.stop()
        if status is None or status in (-signal.SIGXCPU, -signal.SIGKILL):
            return 'hung'
        return 'passed' if status == 0 else 'failed' if status > 0 else 'crashed'

    def stop(self):
        """Ends the program and whatever it has started."""
        if self.process:
            try:
                os.killpg(self.process.pid, signal.SIGKILL)
            except ProcessLookupError:
                pass
            self.process.wait()


def _set_limits(work):
    resource.setrlimit(resource.RLIMIT_CPU, (work, work))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    resource.setrlimit(resource.RLIMIT_AS, (MEMORY_LIMIT, MEMORY_LIMIT))


def _has(program):
    return any(os.access(os.path.join(folder, program), os.X_OK) for folder in os.environ['PATH'].split(':'))


def _common(folder, path):
    """How many folders two places share."""
    return len(os.path.commonpath([folder + '/', path]).split('/')) if os.path.commonpath([folder, path]) else 0
