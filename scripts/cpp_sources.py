"""Reads C++ sources as far as tables and calls go: functions with their calls, constants, members of structs."""
import os
import re

ROOT = os.path.join(os.path.dirname(os.path.abspath(__file__)), '..')
TOKEN = re.compile(r'''//[ ]keys:[ ](?P<told>[^\n]*)|//[^\n]*|/\*.*?\*/
    |^[ \t]*\#[ \t]*define[ ](?P<macro>QX_\w+)[ ](?P<meaning>(?:[^\n\\]|\\.)*)
    |(?P<inc>^[ \t]*\#[ \t]*include[ \t]+"(?P<file>[^"]+\.inc)")|^[ \t]*\#(?:[^\n\\]|\\.|\\\n)*
    |(?P<str>"(?:[^"\\]|\\.)*")|'(?:[^'\\]|\\.)+'|(?P<id>[A-Za-z_]\w*)|(?P<num>\d[\w.']*)|->|::|\S''',
                   re.X | re.S | re.M)
MACROS = {}
OPEN, CLOSE = '([{', ')]}'


def normal(token):
    return '"' + token[1:-1].replace('\\"', '"').replace('\\\\', '\\') if token[0] == '"' else token


def tokens_of(path):
    """Strings keep their first quote; adjacent ones are one."""
    out = []
    with open(os.path.join(ROOT, path), encoding='utf-8') as source:
        text = source.read()
    for match in TOKEN.finditer(text):
        kind, token = match.lastgroup, match.group()
        if kind == 'told':
            out += ['KeysOf', '(', '"' + match['told'], ')', ';']
        elif kind == 'meaning':
            MACROS[match['macro']] = [t.group() for t in TOKEN.finditer(match['meaning'].replace('\\\n', '')) if t.group() != '\\']
        elif token in MACROS:
            out += [normal(t) for t in MACROS[token]]
        elif kind == 'inc':
            if 'registry_rows' not in token and 'state_rows' not in token and os.path.exists(os.path.join(ROOT, match['file'])):
                out += tokens_of(match['file'])
        elif kind == 'str':
            value = normal(token)
            if out and out[-1][0] == '"':
                out[-1] += value[1:]
            else:
                out.append(value)
        elif token[0] not in '/#' or len(token) == 1:
            if token.lstrip()[:1] != '#':
                out.append(token)
    return out


def closing(tokens, at):
    depth = 0
    for i in range(at, len(tokens)):
        if tokens[i] in OPEN:
            depth += 1
        elif tokens[i] in CLOSE:
            depth -= 1
            if depth == 0:
                return i
    return len(tokens)


def split(tokens):
    """At the commas that stand in no brackets."""
    parts, depth, start, angle = [], 0, 0, 0
    for i, token in enumerate(tokens):
        if token in OPEN:
            depth += 1
        elif token in CLOSE:
            depth -= 1
        elif token == ',' and depth == 0:
            parts.append(tokens[start:i])
            start = i + 1
    if tokens[start:]:
        parts.append(tokens[start:])
    return parts


class Function:
    def __init__(self, name, params, body, file, hidden):
        self.name, self.body, self.file, self.hidden = name, body, file, hidden
        self.params = []
        for part in split(params):
            names = [t for t in part if re.match(r'[A-Za-z_]\w*$', t)]
            if '(' in part and part[part.index('(') + 1] in '&*':   # a reference to an array
                names = names[:1] + [part[part.index('(') + 2]]
            if '=' in part:
                names = [t for t in part[:part.index('=')] if re.match(r'[A-Za-z_]\w*$', t)]
            self.params.append(names[-1] if len(names) > 1 else '')
        self.param_types = [part for part in split(params)]
        self.locals, self.calls, self.names, self.variables, self.scope = {}, [], set(), {}, None
        self.labelled, self.frame_places, self.rows_of = {}, set(), {}

    def read(self):
        """Its calls with their arguments, its tables and what its variables are made of, once."""
        body = self.body
        for statement, at in constants_in(body):
            self.locals.update(statement)
        for i, token in enumerate(body):
            if not (token[0].isalpha() or token[0] == '_'):
                continue
            following = body[i + 1] if i + 1 < len(body) else ''
            before = body[i - 1] if i else ''
            if before not in ('.', '->'):
                self.names.add(token)
            if following == '<' and token[0].isupper():
                end = next((k for k in range(i + 1, min(i + 12, len(body))) if body[k] == '>'), None)
                if end and end + 1 < len(body) and body[end + 1] == '(':
                    following, start = '(', end + 1
                else:
                    start = i + 1
            else:
                start = i + 1
            if following == '(' and token not in ('if', 'while', 'for', 'switch', 'return', 'sizeof'):
                end = closing(body, start)
                target = body[i - 2] if before == '=' and i > 1 else ''
                if token == 'KeyedAs' or (i and body[i - 1] == 'KeyedAs'):
                    self.scope = body[end - 1][1:] if body[end - 1][0] == '"' else self.scope
                elif token == 'LabelLine':
                    arguments = split(body[start + 1:end])
                    self.labelled[''.join(arguments[1])] = arguments[2][0][1:]
                else:
                    self.calls.append((token, split(body[start + 1:end]), target))
                    if token == 'AddFrameSummary' and target:
                        self.frame_places.add(target)
            elif following == '=' and body[i + 2:i + 3] != ['=']:
                end = next((k for k in range(i + 2, len(body)) if body[k] == ';'), len(body))
                self.variables.setdefault(token, []).append(body[i + 2:end])
            elif following == '[' and '=' in body[i + 2:i + 8] and body[closing(body, i + 1) + 1:][:2] == ['=', '{']:
                start = closing(body, i + 1) + 2
                self.variables.setdefault(token, []).append(body[start + 1:closing(body, start)])
            elif following == '{' and i and re.match(r'[A-Za-z_]\w*$', before):
                self.variables.setdefault(token, []).append(body[i + 2:closing(body, i + 1)])
        for match in range(len(body) - 6):
            if body[match] == 'for' and body[match + 1] == '(':
                end = closing(body, match + 1)
                inside = body[match + 2:end]
                if ':' in inside and ';' not in inside:
                    colon = inside.index(':')
                    self.rows_of.setdefault(inside[colon - 1], []).append(inside[colon + 1:])


def constants_in(body):
    """The constexpr statements of a body."""
    i = 0
    while i < len(body):
        if body[i] == 'constexpr':
            end = i
            depth = 0
            while end < len(body) and not (body[end] == ';' and depth == 0):
                depth += body[end] in OPEN
                depth -= body[end] in CLOSE
                end += 1
            yield constant_statement(body[i:end]), i
            i = end
        i += 1


class Constant:
    def __init__(self, name, kind, value):
        self.name, self.type, self.value, self.file = name, kind, value, None


def constant_statement(tokens):
    found, i, kind, depth = {}, 0, [], 0
    while i < len(tokens):
        token = tokens[i]
        if depth == 0 and re.match(r'k[A-Z0-9]\w*$', token) and i + 1 < len(tokens) and tokens[i + 1] in ('=', '[', '{'):
            if not kind:
                kind = tokens[:i]
            j = i + 1
            if tokens[j] == '[':
                while j < len(tokens) and tokens[j] == '[':
                    j = closing(tokens, j) + 1
            if j < len(tokens) and tokens[j] == '=':
                j += 1
            start = j
            inner = 0
            while j < len(tokens) and not (tokens[j] == ',' and inner == 0):
                if tokens[j] == '<' and j > start and tokens[j - 1][0].isupper() and '>' in tokens[j:j + 8]:
                    j += tokens[j:].index('>')   # arguments of a template
                inner += tokens[j] in OPEN
                inner -= tokens[j] in CLOSE
                j += 1
            found[token] = Constant(token, kind, tokens[start:j])
            i = j
        else:
            depth += token in OPEN
            depth -= token in CLOSE
        i += 1
    return found


class Sources:
    def __init__(self, paths):
        self.functions, self.constants, self.structs = {}, {}, {}
        for path in paths:
            self.read(path, tokens_of(path), False)

    def read(self, path, tokens, hidden):
        i, start = 0, 0
        while i < len(tokens):
            token = tokens[i]
            if token == 'namespace':
                unnamed = tokens[i + 1] == '{'
                while tokens[i] not in ('{', ';', '='):
                    i += 1
                if tokens[i] == '{':
                    end = closing(tokens, i)
                    self.read(path, tokens[i + 1:end], hidden or unnamed)
                    i = end
                start = i + 1
            elif token in ('struct', 'class') and re.match(r'[A-Za-z_]\w*$', tokens[i + 1]) and self.opens_struct(tokens, i):
                name, brace = tokens[i + 1], tokens.index('{', i)
                end = closing(tokens, brace)
                self.struct(path, name, tokens[brace + 1:end], hidden)
                i = start = end
            elif token == '(' and i > start and re.match(r'[A-Za-z_]\w*$', tokens[i - 1]) and '=' not in tokens[start:i]:
                end = closing(tokens, i)
                j = end + 1
                while j < len(tokens) and tokens[j] not in ('{', ';', '=') and not tokens[j] in OPEN:
                    j += 1
                if j < len(tokens) and tokens[j] == '{':
                    stop = closing(tokens, j)
                    function = Function(tokens[i - 1], tokens[i + 1:end], tokens[j + 1:stop], path, hidden)
                    self.functions.setdefault(function.name, []).append(function)
                    i, start = stop, stop + 1
                else:
                    i = end
            elif token == ';' or token == '}':
                self.statement(path, tokens[start:i], hidden)
                start = i + 1
            elif token in '{[':
                i = closing(tokens, i)
            i += 1

    def opens_struct(self, tokens, at):
        for token in tokens[at:at + 12]:
            if token == '{':
                return True
            if token in (';', '(', '=', ')', '>'):
                return False
        return False

    def struct(self, path, name, tokens, hidden):
        members, defaults = [], {}
        self.read(path, tokens, hidden)
        statement, i = [], 0
        while i < len(tokens):
            if tokens[i] == ';':
                if '(' not in statement or '=' in statement:
                    for part in split(statement):
                        head = part[:part.index('=')] if '=' in part else part
                        names = [t for t in head if re.match(r'[A-Za-z_]\w*$', t)]
                        if names:
                            members.append(names[-1])
                            if '=' in part:
                                defaults[names[-1]] = part[part.index('=') + 1:]
                statement = []
            elif tokens[i] in '{(':
                end = closing(tokens, i)
                if tokens[i] == '{' and '(' in statement:
                    statement = []
                else:
                    statement += tokens[i:end + 1]
                i = end
            else:
                statement.append(tokens[i])
            i += 1
        self.structs.setdefault(name, []).append((members, path))

    def statement(self, path, tokens, hidden):
        if 'constexpr' not in tokens and 'const' not in tokens:
            return
        for name, constant in constant_statement(tokens).items():
            constant.file, constant.hidden = path, hidden
            self.constants.setdefault(name, []).append(constant)

    def members(self, kind, path):
        """Of the struct that a type names, the file's own first."""
        for token in reversed(kind):
            found = self.structs.get(token)
            if found:
                return next((members for members, file in found if file == path), found[0][0])
        return ()

    def find(self, table, name, path):
        found = table.get(name, ())
        own = [f for f in found if f.file == path]
        return own or [f for f in found if not f.hidden]
