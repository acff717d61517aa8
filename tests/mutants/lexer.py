"""Cuts C++ sources into tokens and tells which of them are code that runs."""
import re
from dataclasses import dataclass

TOKEN = re.compile(
    r'(?P<space>\s+)'
    r'|(?P<comment>//[^\n]*|/\*.*?\*/)'
    r'|(?P<string>(?:u8|u|U|L)?R"(?P<mark>[^\s()\\]{0,16})\(.*?\)(?P=mark)"|(?:u8|u|U|L)?"(?:\\.|[^"\\\n])*")'
    r"|(?P<char>(?:u8|u|U|L)?'(?:\\.|[^'\\\n])+')"
    r"|(?P<number>\.?\d(?:'?[\w.]|[eEpP][+-])*)"
    r'|(?P<name>[A-Za-z_]\w*)'
    r'|(?P<sign><=>|<<=|>>=|->\*|\.\.\.|::|->|\+\+|--|<<|<=|>=|==|!=|&&|\|\||[-+*/%&|^]=|.)',
    re.S)
DIRECTIVE = re.compile(r'^[ \t]*#(?:[^\n\\]|\\.|\\\n)*', re.M | re.S)
# Statements that check, or that only prepare room: to change them changes no result.
WITHOUT_EFFECT = {'static_assert', 'assert', 'reserve', 'shrink_to_fit', 'noexcept', 'alignas', 'template', 'using'}
CLASS_WORDS = {'class', 'struct', 'union', 'enum', 'namespace', 'extern'}


@dataclass
class Token:
    kind: str  # name, number, string, char or sign
    text: str
    start: int
    end: int
    line: int  # from 1
    function: int = -1  # which function of the file, -1 outside of all
    skip: bool = False  # part of something without effect

    def __repr__(self):
        return self.text


class Source:
    """The tokens of one file, and the functions they lie in."""

    def __init__(self, path, text):
        self.path = path
        self.text = text
        self.lines = text.split('\n')
        self.tokens = self._tokens()
        self.partner = self._partners()
        self.headers = []  # per function the tokens before its body, from the end of what stands before it
        self._find_functions()
        self._mark_without_effect()
        self.code_lines = len({t.line for t in self.tokens if t.text not in '{};)'})

    def line_start(self, line):
        return sum(len(one) + 1 for one in self.lines[:line - 1])

    def spaced(self, i):
        """Whether token i has a blank or an end of line on both sides, as binary operators have."""
        token = self.tokens[i]
        return self.text[token.start - 1].isspace() and token.end < len(self.text) and self.text[token.end].isspace()

    def _tokens(self):
        text = DIRECTIVE.sub(lambda m: re.sub(r'[^\n]', ' ', m.group()), self.text)
        tokens, line, at = [], 1, 0
        for match in TOKEN.finditer(text):
            kind = match.lastgroup if match.lastgroup != 'mark' else 'string'
            line += text.count('\n', at, match.start())
            at = match.start()
            if kind not in ('space', 'comment'):
                tokens.append(Token(kind, match.group(), match.start(), match.end(), line))
        return tokens

    def _partners(self):
        """The index of the bracket that closes, or opens, each bracket."""
        partner, open_ones = {}, []
        closing = {')': '(', ']': '[', '}': '{'}
        for i, token in enumerate(self.tokens):
            if token.text in ('(', '[', '{') and token.kind == 'sign':
                open_ones.append(i)
            elif token.text in closing and token.kind == 'sign':
                while open_ones and self.tokens[open_ones[-1]].text != closing[token.text]:
                    open_ones.pop()
                if open_ones:
                    partner[i] = open_ones.pop()
                    partner[partner[i]] = i
        return partner

    def _find_functions(self):
        i, begin = 0, 0
        while i < len(self.tokens):
            text = self.tokens[i].text
            if text == '{' and i in self.partner:
                header = self.tokens[begin:i]
                words = {t.text for t in header}
                is_function = any(t.text == ')' for t in header) and not self._is_value(header)
                if is_function and not (words & {'namespace', 'extern'}):
                    closing = self.partner[i]
                    # A constructor's list of fields may use braces: the body is then still to come.
                    if closing + 1 == len(self.tokens) or self.tokens[closing + 1].text not in (',', '{'):
                        self._name_function(header, i, closing)
                        begin = closing + 1
                    i = closing + 1
                    continue
                if not words & CLASS_WORDS or 'enum' in words:
                    i = self.partner[i] + 1  # values of an array, or of an enumeration
                    continue
                begin = i + 1
            elif text in (';', '}'):
                begin = i + 1
            elif text == ':' and i and self.tokens[i - 1].text in ('public', 'protected', 'private'):
                begin = i + 1
            elif text == '(' and i in self.partner:
                i = self.partner[i]
                continue
            i += 1

    def _is_value(self, header):
        depth = 0
        for token in header:
            depth += (token.text in '([') - (token.text in ')]')
            if token.text == '=' and depth == 0 and 'operator' not in {t.text for t in header}:
                return True
        return False

    def _name_function(self, header, opening, closing):
        number = len(self.headers)
        self.headers.append(header)
        first = next((k for k, t in enumerate(header) if t.text == ':'), len(header))
        for token in header[first:]:
            token.function = number  # fields' first values
        for token in self.tokens[opening:closing + 1]:
            token.function = number

    def _mark_without_effect(self):
        for i, token in enumerate(self.tokens):
            if token.text in WITHOUT_EFFECT and token.kind == 'name':
                following = self.tokens[i + 1].text if i + 1 < len(self.tokens) else ''
                end = self.partner.get(i + 1, i) if following == '(' else i
                if token.text == 'template' and following == '<' or token.text == 'using':
                    end = self._end_of(i, '>' if token.text == 'template' else ';')
                for k in range(i, end + 1):
                    self.tokens[k].skip = True

    def _end_of(self, i, text):
        depth = 0
        for k in range(i, len(self.tokens)):
            depth += (self.tokens[k].text == '<') - (self.tokens[k].text == '>')
            if self.tokens[k].text == text and (text != '>' or depth == 0):
                return k
        return len(self.tokens) - 1

    def return_type(self, function):
        """The words before a function's name, or nothing where that cannot be told."""
        words = []
        for token in self.headers[function]:
            if token.text == '(':
                while len(words) > 2 and words[-2] == '::':
                    del words[-3:-1]  # the class that the function belongs to
                return [w for w in words[:-1] if w not in ('static', 'inline', 'constexpr', 'virtual', 'explicit', 'const')]
            words.append(token.text)
        return []
