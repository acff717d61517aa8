"""The changes that are tried: each makes one line of a source mean something else."""
import re
from collections import Counter
from dataclasses import dataclass

RELATIONS = {'<': ['<=', '>='], '<=': ['<', '>'], '>': ['>=', '<='], '>=': ['>', '<'], '==': ['!='], '!=': ['==']}
ARITHMETIC = {'+': ['-'], '-': ['+'], '*': ['+'], '+=': ['-='], '-=': ['+='], '<<': ['>>'], '>>': ['<<'], '%': ['*']}
BITS = {'|': ['&'], '&': ['|'], '|=': ['&='], '&=': ['|=']}
LOGIC = {'&&': ['||'], '||': ['&&']}
PAIRS = [('x', 'y'), ('X', 'Y'), ('first', 'second'), ('min', 'max'), ('left', 'right'), ('top', 'bottom'),
         ('width', 'height'), ('w', 'h'), ('cx', 'cy'), ('floor', 'ceil'), ('low', 'high'), ('ul', 'lr'), ('ur', 'll'),
         ('front', 'back'), ('begin', 'rbegin'), ('lower_bound', 'upper_bound'), ('horizontal', 'vertical'),
         ('row', 'column'), ('sin', 'cos'), ('any_of', 'all_of'), ('p1', 'p2')]
NAMES = {a: b for one, other in PAIRS for a, b in ((one, other), (other, one))}
KEYWORDS = {'return', 'if', 'for', 'while', 'switch', 'case', 'break', 'continue', 'do', 'else', 'goto', 'using', 'typedef',
            'static', 'const', 'constexpr', 'auto', 'throw', 'try', 'catch', 'new', 'default', 'unsigned', 'friend',
            'operator', 'template', 'typename', 'struct', 'class', 'enum', 'public', 'private', 'protected', 'virtual',
            'co_return', 'thread_local', 'mutable', 'asm'}
NUMBERS = {'long', 'int', 'short', 'unsigned', 'char', 'float', 'double', 'size_t', 'u8', 'u16', 'u32', 'u64', 'i64', 'DWORD',
           'int8_t', 'int16_t', 'int32_t', 'int64_t', 'uint8_t', 'uint16_t', 'uint32_t', 'uint64_t', 'ptrdiff_t'}
# These take their arguments in any order.
SYMMETRIC = {'max', 'min', 'swap', 'hypot'}
# Kinds that are easily noticed are drawn half as often.
LIGHT = {'return': 0.5, 'swap': 0.5, 'sign': 0.5}


@dataclass(frozen=True)
class Mutant:
    path: str
    line: int  # the first line that changes, from 1
    function: int
    operator: str
    start: int  # what is replaced in the text of the file
    end: int
    put: str
    before: str  # the lines it touches, without the blanks around them
    after: str


def changes(source):
    """All mutants of a source, each with one change on one line or one statement."""
    found = []
    for i, token in enumerate(source.tokens):
        if token.skip:
            continue
        for operator, start, end, put in _at(source, i):
            found.append(_mutant(source, token, operator, start, end, put))
    return [m for m in found if m.before != m.after]


def _mutant(source, token, operator, start, end, put):
    text = source.text
    begin = text.rfind('\n', 0, start) + 1
    stop = text.find('\n', end)
    stop = len(text) if stop < 0 else stop
    tidy = lambda s: re.sub(r'\s+', ' ', s).strip()
    return Mutant(source.path, token.line, token.function, operator, start, end, put, tidy(text[begin:stop]),
                  tidy(text[begin:start] + put + text[end:stop]))


def _at(source, i):
    token = source.tokens[i]
    inside = token.function >= 0
    if token.kind == 'number':
        yield from _number(source, i)
    if not inside:
        return
    if token.kind == 'sign':
        yield from _sign(source, i)
    elif token.kind == 'name':
        yield from _name(source, i)
    if _begins_statement(source, i):
        yield from _statement(source, i)
    if token.text in ('(', ',') and token.kind == 'sign':
        yield from _swap(source, i)


def _sign(source, i):
    token = source.tokens[i]
    before = source.tokens[i - 1]
    if before.text == 'operator':
        return
    for name, table in (('relation', RELATIONS), ('arithmetic', ARITHMETIC), ('bits', BITS), ('logic', LOGIC)):
        if token.text in table and source.spaced(i) and not _is_text(source, i):
            for put in table[token.text]:
                yield name, token.start, token.end, put
    if token.text == '!' and before.text != 'operator':
        yield 'not', token.start, token.end, ''
    if token.text == '-' and not source.spaced(i) and before.text in ('(', ',', '=', 'return', '?', ':', '*', '+'):
        yield 'sign', token.start, token.end, ''


def _is_text(source, i):
    """Strings are joined by + and streams fed by <<."""
    near = source.tokens[max(0, i - 2):i + 3]
    return any(t.kind == 'string' for t in near) or 'std' in {t.text for t in near} and source.tokens[i].text == '<<'


def _number(source, i):
    token = source.tokens[i]
    if token.function < 0 and not _in_value(source, i):
        return
    if source.tokens[i - 1].text == '[' and source.tokens[i - 3].kind == 'name' or source.tokens[i - 1].text == '<':
        return  # the size of an array that is declared here, or an argument of a template
    whole = re.fullmatch(r"(0[xX])?([0-9a-fA-F']+)([uUlL]*)", token.text)
    if whole and (whole[1] or not re.search('[a-fA-F]', whole[2])):
        value = int(whole[2].replace("'", ''), 16 if whole[1] else 10)
        write = (lambda v: hex(v) + whole[3]) if whole[1] else (lambda v: str(v) + whole[3])
        yield 'constant', token.start, token.end, write(value + 1)
        if value > 1:
            yield 'constant', token.start, token.end, write(value - 1)
    elif re.fullmatch(r'\d*\.\d*f?', token.text):
        value = float(token.text.rstrip('f'))
        suffix = 'f' if token.text.endswith('f') else ''
        yield 'constant', token.start, token.end, repr(value + 1) + suffix
        if value:
            yield 'constant', token.start, token.end, repr(value * 0.75) + suffix


def _in_value(source, i):
    """Whether a number outside of functions is part of a value that is named or of a table."""
    for k in range(i - 1, max(0, i - 400), -1):
        text = source.tokens[k].text
        if text == '=' and source.tokens[k - 1].text != 'operator':
            names = {t.text for t in source.tokens[max(0, k - 12):k]}
            return 'operator' not in names and not ('virtual' in names and source.tokens[i].text == '0')
        if text in (';', 'enum'):
            return False
    return False


def _name(source, i):
    token = source.tokens[i]
    before = source.tokens[i - 1]
    if token.text in ('true', 'false'):
        yield 'truth', token.start, token.end, 'false' if token.text == 'true' else 'true'
    elif token.text in NAMES and not _declares(source, i):
        yield 'name', token.start, token.end, NAMES[token.text]
    elif token.text == 'return':
        yield from _return(source, i)
    elif token.text in ('break', 'continue') and source.tokens[i + 1].text == ';' and before.text not in ('default',):
        yield 'statement', token.start, token.end, ''


def _declares(source, i):
    before, after = source.tokens[i - 1], source.tokens[i + 1]
    return (before.kind == 'name' and before.text not in ('return', 'case', 'else') or
            before.text in ('&', '*', '>') and not source.spaced(i - 1)) and after.text not in ('<',)


def _begins_statement(source, i):
    token, before = source.tokens[i], source.tokens[i - 1]
    if token.kind != 'name' and token.text not in ('*', '++', '--', '(') or token.text in KEYWORDS:
        return False
    if before.text in (';', '}', 'else') or before.text == '{' and source.tokens[i - 2].text in (')', 'const', ';', 'else', ']'):
        return True
    if before.text == ':' and source.tokens[i - 2].kind in ('name', 'number', 'char'):
        return source.tokens[i - 3].text in ('case', '::') or source.tokens[i - 2].text == 'default'
    opening = source.partner.get(i - 1)
    return before.text == ')' and opening and source.tokens[opening - 1].text in ('if', 'for', 'while')


def _statement(source, i):
    """Deletes a call or an assignment."""
    end, k, worth = None, i, False
    while k < len(source.tokens):
        token = source.tokens[k]
        before = source.tokens[k - 1]
        if token.text == ';':
            end = k
            break
        if token.text in ('{', '}') or token.skip:
            return
        if not worth and k > i:
            # Two words side by side, or a type with its sign, declare something.
            if token.kind == 'name' and (before.kind == 'name' or before.text == '>'):
                return
            if token.text in ('*', '&', '&&') and not source.spaced(k):
                return
        if token.text in ('=', '+=', '-=', '*=', '/=', '|=', '&=', '^=', '<<=', '>>=', '++', '--'):
            worth = True
        if token.text in ('(', '['):
            if token.text == '(' and source.tokens[k + 1:] and k > i:
                worth = worth or source.tokens[source.partner.get(k, k) + 1].text in (';', '.', '->', '=', '[')
            k = source.partner.get(k, len(source.tokens))
        k += 1
    if end is not None and worth:
        yield 'statement', source.tokens[i].start, source.tokens[end - 1].end, ''


def _return(source, i):
    end = i
    while end < len(source.tokens) and source.tokens[end].text != ';':
        end = source.partner.get(end, end) + 1 if source.tokens[end].text in ('(', '[', '{') else end + 1
    if end == i + 1:
        yield 'statement', source.tokens[i].start, source.tokens[i].end, ''  # goes on where it went back
        return
    start, stop = source.tokens[i + 1].start, source.tokens[end - 1].end
    value = source.text[start:stop]
    kind = source.return_type(source.tokens[i].function)
    if value in ('true', 'false') or not kind:
        return
    if kind == ['bool']:
        yield 'return', start, stop, '!(' + value + ')'
    elif kind[-1] == '*':
        if value != 'nullptr':
            yield 'return', start, stop, 'nullptr'
    elif kind[-1] in NUMBERS:
        yield 'return', start, stop, '(' + value + ') + 1'
    elif kind[-1] != '&' and value != '{}' and not re.fullmatch(r'\w+\(\)', value):
        yield 'return', start, stop, '{}'


def _swap(source, i):
    """Exchanges two arguments side by side that are both plain values."""
    if source.tokens[i - 1].text in SYMMETRIC:
        return
    first = _argument(source, i + 1)
    if first is None or source.tokens[first].text != ',':
        return
    second = _argument(source, first + 1)
    if second is None or source.tokens[second].text not in (',', ')'):
        return
    a = source.text[source.tokens[i + 1].start:source.tokens[first - 1].end]
    b = source.text[source.tokens[first + 1].start:source.tokens[second - 1].end]
    if a != b:
        yield 'swap', source.tokens[i + 1].start, source.tokens[second - 1].end, b + ', ' + a


def _argument(source, i):
    """The token after a name with its fields, such as a.b->c or a.x()."""
    if i >= len(source.tokens) or source.tokens[i].kind not in ('name', 'number'):
        return None
    while i + 1 < len(source.tokens):
        i += 1
        text = source.tokens[i].text
        if text == '(' and source.tokens[i + 1].text == ')':
            i += 1
        elif text in (',', ')'):
            return i
        elif text not in ('.', '->', '::') and source.tokens[i - 1].text not in ('.', '->', '::'):
            return None
    return None


def draw(sources, random, per_function=2):
    """Mutants in a random order: a file by its lines of code, a kind of change by its kind, at most some per function."""
    pools = {s.path: changes(s) for s in sources}
    weights = {s.path: s.code_lines for s in sources if pools[s.path]}
    taken = Counter()
    while weights:
        path = random.choices(list(weights), list(weights.values()))[0]
        pool = pools[path]
        kinds = sorted({m.operator for m in pool})
        operator = random.choices(kinds, [LIGHT.get(kind, 1) for kind in kinds])[0]
        mutant = random.choice([m for m in pool if m.operator == operator])
        pool.remove(mutant)
        if not pool:
            del weights[path]
        where = (path, mutant.function if mutant.function >= 0 else -mutant.line)
        if taken[where] < per_function:
            taken[where] += 1
            yield mutant
