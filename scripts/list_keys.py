#!/usr/bin/env python3
"""Lists the keys of every protocol from the sources of the decoders, for `qxview protocols --fields`.

    scripts/list_keys.py OUT.inc     rows {protocol, key, label, kinds}; the build runs it
    scripts/list_keys.py --open      the labels that no literal tells, with where they are

From every function of the registry it follows calls, tables and function pointers, takes the labels off the texts of
AddLine and its kin, and off the tables of rows, and resolves labels that are arguments: literals, parameters over all
calls, members of rows, names of tables. A function that says `KeyedAs keys(PacketOf(at), "llc")` starts a protocol of its
own. It knows the forms of rows: Rows and Choices of core, BerRow.
"""
import glob
import os
import re
import sys

from cpp_sources import CLOSE, OPEN, ROOT, Constant, Sources, closing, split

NUMBER, TEXT, ADDRESS, BYTES, TIME, NONE, ROW = (1 << i for i in range(7))   # ROW: of a table of rows
CONVERSION = re.compile(r'%(\d*)(?:\.\d*)?(?:l|I64)?([scdiuxX])')
ANY = '*'   # a label that only a packet tells
MOST_DEPTH = 300
# What these cannot tell comes from their tables and comments.
READ_OTHERWISE = ('decoders/asn1/ber', 'decoders/smb/smb_rap_data', 'core/frame_entry')
ANY_KIND = NUMBER | TEXT | ADDRESS | BYTES | TIME


# --- labels and values of a text, as core/label_and_value.cpp takes them ---

def trim_label(text):
    return re.sub(r'#\d*', '', text)


def key_of(label):
    return re.sub(r'[^a-z0-9*]+', '_', label.lower()).strip('_')


VALUE_KINDS = [
    (re.compile(r'(IPv4|IPv6|Mac|IpxNetwork|Address)Text|CheckAlias|NameAddress'), ADDRESS),
    (re.compile(r'HexText|HexDigits|HexSlice'), BYTES),
    (re.compile(r'\w*(Time|Utc|Span|Date)\w*Text|UtcText'), TIME),
]


def kind_of_text(expression):
    joined = ' '.join(t for t in expression if t[0] != '"')
    for pattern, kind in VALUE_KINDS:
        if pattern.search(joined):
            return kind
    return TEXT


class Scan:
    def __init__(self, sources, roots):
        self.sources, self.roots = sources, roots
        self.keys = {}     # (protocol, label key) -> [label, kinds]
        self.open = {}     # labels that no literal tells -> where
        self.done, self.tables_done = set(), set()

    def emit(self, protocol, label, kind, where=''):
        label = trim_label(label)
        key = key_of(label)
        if key != ANY and not re.search('[a-z0-9]', key):
            if ANY in label:
                self.open.setdefault((protocol, label), where)
            return
        if ANY in key:
            self.open.setdefault((protocol, label), where)
            if not where.startswith(READ_OTHERWISE):
                self.keys.setdefault(protocol + '.*', ['Names That the Packet Tells', ANY_KIND])
            return
        whole = protocol if key in (protocol, protocol + 'v') else protocol + '.' + key
        row = self.keys.setdefault(whole, [' '.join(label.split()).strip(), 0])
        row[1] |= kind

    # --- what an expression may be: strings ---

    def strings(self, expression, function, env, depth=0):
        """The texts that an expression may be; ANY among them when a packet tells it."""
        if depth > 6:
            return {ANY}
        expression = [t for t in expression]
        while expression and expression[0] == '(' and closing(expression, 0) == len(expression) - 1:
            expression = expression[1:-1]
        if '?' in expression:
            return self.alternatives(expression, function, env, depth)
        if len(expression) == 1:
            return self.name(expression[0], function, env, depth)
        if expression[-1:] == [']'] and '[' in expression[2:] and expression[1] in ('.', '->'):
            expression = expression[:expression.index('[')]
        if len(expression) == 3 and expression[1] in ('.', '->'):
            return self.member(expression[0], expression[2], function, env, depth)
        if len(expression) >= 4 and expression[-2] in ('.', '->') and expression[-1] in ('text',):
            return self.strings(expression[:-2], function, env, depth + 1)
        literals = [t[1:] for t in expression if t[0] == '"']
        if len(expression) > 3 and expression[1] == '[' and expression[-1] == ']':
            if expression[0] in env:
                return env[expression[0]]
            found = self.table_strings(expression[0], function)
            for value in function.variables.get(expression[0], ()) if function and not found else ():
                for part in split(value):
                    found |= self.strings(part, function, env, depth + 1)
            return found or {ANY}
        call = expression[0] if len(expression) > 2 and expression[1] in '(<' and '(' in expression else None
        if expression and expression[0] in ('static_cast', 'const'):
            inside = expression[expression.index('(') + 1:-1] if '(' in expression else []
            return self.strings(inside, function, env, depth + 1)
        if call:
            arguments = split(expression[expression.index('(') + 1:closing(expression, expression.index('('))])
            if call in ('LookupName', 'NameOf', 'LookupOr'):
                found = set()
                for argument in arguments:
                    if argument and (re.match(r'k[A-Z]', argument[0]) or argument[0][0] == '"'):
                        found |= self.strings(argument, function, env, depth + 1) - {ANY}
                return found or {ANY}
            return self.returned(call, arguments, function, env, depth)
        return set(literals) or {ANY}

    def alternatives(self, expression, function, env, depth):
        found, start, level = set(), expression.index('?') + 1, 0
        i = start
        while i < len(expression):
            token = expression[i]
            level += token in OPEN
            level -= token in CLOSE
            if level == 0 and token in '?:':
                if token == ':':
                    found |= self.strings(expression[start:i], function, env, depth + 1)
                start = i + 1
            i += 1
        return found | self.strings(expression[start:], function, env, depth + 1)

    def table_strings(self, name, function):
        for constant in self.constants(name, function):
            return {t[1:] for t in constant.value if t[0] == '"'}
        return set()

    def constants(self, name, function):
        if function and name in function.locals:
            found = function.locals[name]
            found.file, found.hidden = function.file, True
            return [found]
        return self.sources.find(self.sources.constants, name, function.file if function else '')

    def name(self, token, function, env, depth):
        if token[0] == '"':
            return {token[1:]}
        if token in ('nullptr', '0'):
            return set()
        if token in env:
            return env[token]
        if function and token in function.rows_of:
            return set().union(*(self.strings(e, function, env, depth + 1) for e in function.rows_of[token]))
        if re.match(r'k[A-Z]', token):
            for constant in self.constants(token, function):
                return {t[1:] for t in constant.value if t[0] == '"'} or {ANY}
        if function and token in function.variables:
            found = set()
            for value in function.variables[token]:
                found |= self.strings(value, function, env, depth + 1)
            return found
        if function and token in function.params:
            return set()   # of a function that a table holds: its rows say it
        return self.made(token, function, env, depth)

    def made(self, token, function, env, depth):
        """What FormatInto wrote into a buffer of the function."""
        found = set()
        for call, arguments, _ in function.calls if function else ():
            if call in ('FormatInto', 'CopyString') and arguments and arguments[0] and arguments[0][0] == token:
                text = arguments[2]
                if call == 'CopyString' or text[0][0] != '"':
                    found |= self.strings(text, function, env, depth + 1)
                else:
                    found |= self.filled(text[0][1:], arguments[3:], function, env, depth)
        return found or {ANY}

    def filled(self, text, arguments, function, env, depth=0):
        """A text with its conversions replaced; numbers and unknown texts by ANY."""
        made, at = {''}, 0
        for number, match in enumerate(CONVERSION.finditer(text)):
            made = {m + text[at:match.start()] for m in made}
            at = match.end()
            argument = arguments[number] if number < len(arguments) else []
            values = self.strings(argument, function, env, depth + 1) if match.group(2) == 's' else {ANY}
            made = {m + value for m in made for value in (values or {''})}
        return {m + text[at:] for m in made}

    def member(self, name, member, function, env, depth):
        """row.label: of the rows of every table that `row` may stand for."""
        if (name, member) in env:
            return env[(name, member)]
        key = name + '.' + member
        if key in env:
            return env[key]
        expressions = list(function.rows_of.get(name, ())) + list(function.variables.get(name, ())) if function else []
        found = set()
        for expression in expressions:
            if not expression:
                continue
            handed = env.get(expression[0] + '.' + member)
            if handed:
                return handed
            base = expression[0] if expression[0] not in ('*', '&') else expression[1]
            for constant in self.constants(base, function):
                found |= self.column(constant, member, function)
            for value in function.variables.get(base, ()) if not found and base != name else ():
                found |= {t[1:] for t in value if t[0] == '"'}
        kind = self.type_of(name, function)
        if not found and kind in self.sources.structs:
            # A row that something else found: any table of that type in the function's file.
            for constants in self.sources.constants.values():
                for constant in constants:
                    if constant.file == function.file and kind in constant.type:
                        found |= self.column(constant, member, function)
        return found or {ANY}

    def type_of(self, name, function):
        if not function:
            return ''
        if name in function.params:
            part = function.param_types[function.params.index(name)]
            return next((t for t in part if t[0].isupper()), '')
        body = function.body
        for i in range(len(body) - 1):
            if body[i + 1] == name and (body[i] in '&*' or body[i][0].isupper()):
                return next((t for t in reversed(body[max(0, i - 2):i + 1]) if t[0].isupper()), '')
        return ''

    def column(self, constant, member, function):
        members = self.sources.members(constant.type, constant.file)
        if not members:
            return {t[1:] for t in constant.value if t[0] == '"'}
        if member not in members:
            return set()
        index, found = members.index(member), set()
        value = constant.value
        if value and value[0] == '{':
            value = value[1:closing(value, 0)]
        rows = [part for part in split(value)]
        if rows and rows[0] and rows[0][0] != '{' and all(not row or row[0] != '{' for row in rows):
            rows = [['{'] + value + ['}']]
        for row in rows:
            if not row or row[0] != '{':
                found |= {t[1:] for t in row if t[0] == '"'}
                continue
            cells = split(row[1:closing(row, 0)])
            named = [c for c in cells if c and c[0] == '.' and c[1] == member]
            cell = named[0][3:] if named else cells[index] if index < len(cells) else []
            found |= self.strings(cell, function, {}, 3) if cell else set()
        return found

    def returned(self, name, arguments, function, env, depth):
        found = set()
        for callee in self.sources.find(self.sources.functions, name, function.file if function else ''):
            self.prepare(callee)
            inner = self.bind(callee, arguments, function, env, depth)
            body = callee.body
            for i, token in enumerate(body):
                if token == 'return':
                    end = next((k for k in range(i, len(body)) if body[k] == ';'), len(body))
                    found |= self.strings(body[i + 1:end], callee, inner, depth + 1)
        return found or {ANY}

    def bind(self, callee, arguments, function, env, depth=0):
        inner = {}
        for parameter, argument in zip(callee.params, arguments):
            kind = callee.param_types[callee.params.index(parameter)]
            if not parameter or not argument:
                continue
            if 'char' in kind or 'ShortText' in kind:
                inner[parameter] = frozenset(self.strings(argument, function, env, depth + 1))
            elif 'NameTable' in kind or 'Names' in kind:
                table = self.strings(argument, function, env, depth + 1) if len(argument) == 1 else set()
                inner[parameter + '.name'] = frozenset(table or {ANY})
            elif any(t in self.sources.structs for t in kind) and len(argument) <= 3 or 'span' in kind:
                self.bind_row(inner, parameter, argument, function, env)
        return inner

    def bind_row(self, inner, parameter, argument, function, env):
        """A row, or a table of rows, that a call hands on: its texts by member."""
        base = [t for t in argument if t not in '*&()']
        if not base:
            return
        name = base[0]
        for key, value in env.items():
            if isinstance(key, str) and key.startswith(name + '.') and len(base) == 1:
                inner[parameter + key[len(name):]] = value
        names = [name]
        for table in function.rows_of.get(name, ()) if function else ():
            names += [t for t in table if t not in '*&']
        for variable in (function.variables.get(name, ()) if function else ()):
            names += [t for t in variable if re.match(r'k[A-Z]', t)]
        for candidate in names:
            for constant in self.constants(candidate, function):
                for member in self.sources.members(constant.type, constant.file):
                    found = self.column(constant, member, function)
                    if found and found != {ANY}:
                        inner[parameter + '.' + member] = frozenset(found)

    # --- lines ---

    def prepare(self, function):
        if function.names or function.calls:
            return
        function.read()

    def line(self, protocol, text, arguments, function, env, target, isBits):
        """One AddLine: the label of its text, and what stands behind it."""
        where = '%s: "%s"' % (function.file, text)
        pieces, at = [], 0
        for match in CONVERSION.finditer(text):
            pieces.append((text[at:match.start()], match.group(2)))
            at = match.end()
        rest = text[at:]
        arguments = list(arguments)
        hasPicture = False
        if pieces and pieces[0] == ('', 's') and arguments and (isBits or arguments[0][-1:] == ['picture']):
            hasPicture = True
            pieces, arguments = pieces[1:], arguments[1:]
            if pieces:
                pieces[0] = (pieces[0][0].lstrip(': '), pieces[0][1])
            else:
                rest = rest.lstrip(': ')
        elif not pieces and re.match(r'[.01 ]{8,}', text):
            hasPicture, rest = True, re.sub(r'^[.01 ]+[: ]*', '', text)
        labels, kind, ended = self.label(pieces, rest, arguments, function, env)
        if hasPicture:
            kind = kind & ~(TEXT | NONE) or NUMBER
        if target in function.labelled:
            labels = {function.labelled[target]}
        for label in sorted(labels):
            self.emit(protocol, label, kind, where)

    def label(self, pieces, rest, arguments, function, env):
        labels = {''}
        separator = re.compile('[:=]')
        for number, (literal, conversion) in enumerate(pieces):
            found = separator.search(literal)
            behind = pieces[number + 1][0] if number + 1 < len(pieces) else rest
            if found:
                value = literal[found.start() + 1:].replace('0x', '')
                isText = re.search('[A-Za-z]', value)
                kind = TEXT if isText else self.value_kind(number, pieces, arguments, behind, function)
                return {l + literal[:found.start()] for l in labels}, kind, True
            argument = arguments[number] if number < len(arguments) else []
            counts = literal.endswith('#') or (literal.endswith(' ') and conversion != 's' and behind[:1] in (':', '='))
            if counts:
                labels = {l + literal for l in labels}
                continue
            if conversion != 's':
                return {l + literal for l in labels}, self.value_kind(number, pieces, arguments, behind, function), False
            values = self.strings(argument, function, env)
            holds = {v for v in values if re.search(r'[:=] *$', v) and not separator.search(v.rstrip(' :='))}
            isAll = labels == {''} and not literal and number == len(pieces) - 1 and not rest
            if isAll:
                return self.whole(values)
            if holds:
                kind = self.value_kind(number + 1, pieces, arguments, '', function) if number + 1 < len(pieces) else TEXT
                return {l + literal + v.rstrip(' :=') for l in labels for v in holds}, kind, True
            follows = self.separator_follows(pieces, number, rest)
            if not follows or kind_of_text(argument) != TEXT or self.type_of(argument[0], function) == 'TextSlice':
                kind = kind_of_text(argument)
                return {l + literal for l in labels}, kind, False
            labels = {l + literal + v for l in labels for v in (values or {''})}
        found = separator.search(rest)
        if found:
            value = rest[found.start() + 1:].strip()
            return {l + rest[:found.start()] for l in labels}, TEXT if True or value else NONE, True
        return {l + rest.split('[')[0] for l in labels}, NONE, False

    def separator_follows(self, pieces, number, rest):
        for literal, conversion in pieces[number + 1:]:
            if re.search('[:=]', literal):
                return True
            if conversion != 's' and not literal.endswith('#'):
                return literal.endswith(' ') and number + 2 == len(pieces) and rest[:1] in (':', '=')
        return bool(re.search('[:=]', rest))

    def whole(self, texts):
        """Texts that were made before."""
        labels, kind = set(), 0
        for text in texts:
            cut = re.split(r'[:=\[]', text, maxsplit=1)
            labels.add(cut[0])
            kind |= TEXT if len(cut) > 1 else NONE
        return labels, kind or NONE, True

    def kind_of(self, argument, function):
        """Of a text that is an argument; of a variable what it was made of."""
        kind = kind_of_text(argument)
        for value in function.variables.get(argument[0], ()) if kind == TEXT and argument and function else ():
            kind = kind_of_text(value)
        return kind

    def value_kind(self, number, pieces, arguments, behind, function=None):
        literal, conversion = pieces[number]
        if conversion == 's':
            return self.kind_of(arguments[number] if number < len(arguments) else [], function)
        if number + 1 < len(pieces) and pieces[number + 1][0] in ('-', ':', '.', '/') and pieces[number + 1][1] != 's':
            return TEXT
        return NUMBER

    # --- functions and tables ---

    def visit(self, protocol, function, env, depth=0):
        self.prepare(function)
        if function.scope:
            protocol = function.scope
        key = (protocol, id(function), tuple(sorted((k, tuple(sorted(v))) for k, v in env.items() if isinstance(k, str))))
        if key in self.done or depth > MOST_DEPTH:
            return
        self.done.add(key)
        called = set()
        self.rows_in_code(protocol, function, depth)
        for name, arguments, target in function.calls:
            inside = protocol
            if arguments and len(arguments[0]) == 1 and arguments[0][0] in function.frame_places:
                inside = 'frame'
            called.add(name)
            try:
                self.call(inside, name, arguments, target, function, env, depth)
            except (IndexError, KeyError, ValueError, TypeError):   # what this cannot read, the test of keys finds
                self.open.setdefault((protocol, ANY), '%s: %s, not read' % (function.file, name))
        for name in function.names:
            if name not in called:
                self.refer(protocol, name, function, depth)
        for name in called:
            self.constant(protocol, name, function, depth)

    def call(self, protocol, name, arguments, target, function, env, depth):
        adder = ADDERS.get(name)
        if adder is not None and len(arguments) > adder:
            text = arguments[adder]
            if name in ('AddLine', 'AddBitLine'):
                if text and text[0][0] == '"':
                    self.line(protocol, text[0][1:], arguments[adder + 1:], function, env, target, name == 'AddBitLine')
                return
            labels, kind, _ = self.whole(self.strings(text, function, env))
            for label in sorted(labels):
                self.emit(protocol, label, TEXT if name in TEXT_ADDERS else kind, function.file + ': ' + name)
            if name == 'AddCountedString':
                self.emit(protocol, 'String Length', NUMBER)
            return
        if name == 'ShowElements':
            for label in sorted(self.strings(arguments[3], function, env)):
                self.emit(protocol, label, TEXT)
            self.element_form(protocol, arguments[2], function)
        if name == 'ShowRows' and len(arguments) > 4:
            for constant in self.constants(arguments[2][0], function):
                self.rows(protocol, constant, function, depth, self.strings(arguments[4], function, env))
        if name == 'KeysOf':   # a comment: what texts from elsewhere are
            kind, labels = arguments[0][0][1:].split(' ', 1)
            if kind == 'file':   # a dictionary: "1 User-Name text"; vendors' own are not listed
                with open(os.path.join(ROOT, labels), encoding='utf-8') as rows:
                    for label in re.findall(r'^\d+ (\S+)', rows.read(), re.M):
                        self.emit(protocol, label, ANY_KIND)
                self.keys.setdefault(protocol + '.*', ['Names That the Packet Tells', ANY_KIND])
                return
            if kind == 'tables':   # dictionaries in sources: {1, kText, "Label"
                for path in sorted(glob.glob(os.path.join(ROOT, labels))):
                    with open(path, encoding='utf-8') as rows:
                        for label in re.findall(r'\{\d+,\s+k[A-Z]\w+,\s+"([^"]+)"|Kind::k\w+,(?:\s+\d+,)?\s+"([^"]+)"', rows.read()):
                            self.emit(protocol, label[0] or label[1], ANY_KIND)
                return
            for label in labels.split(', '):
                self.emit('frame' if function.file == 'core/frame_entry.cpp' else protocol, label, KIND_NAMES[kind])
        if name in OPAQUE:
            return
        for callee in self.sources.find(self.sources.functions, name, function.file):
            if name == 'AddFrameSummary':
                self.visit('frame', callee, {}, depth + 1)
            elif len(callee.params) >= len(arguments):
                self.visit(protocol, callee, self.bind(callee, arguments, function, env), depth + 1)

    def element_form(self, protocol, argument, function):
        labels = {'typeLabel': 'Type', 'lengthLabel': 'Length'}
        for constant in self.constants(argument[0], function):
            for cell in split(constant.value[1:-1]):
                if len(cell) > 3 and cell[1] in labels:
                    labels[cell[1]] = cell[3][1:]
                if cell and cell[1:2] == ['padTo']:
                    self.emit(protocol, 'Padding', BYTES)
                if cell and cell[1:2] == ['valueLines']:
                    self.emit(protocol, 'Value', BYTES)
        for label in labels.values():
            self.emit(protocol, label, NUMBER)
        self.emit(protocol, 'Data', NONE)

    def refer(self, protocol, name, function, depth):
        """A function or a table that is named and not called: handed on, or stood in a table."""
        if name in OPAQUE or name in ADDERS:
            return
        for callee in self.sources.find(self.sources.functions, name, function.file if function else ''):
            if callee.hidden or name not in self.roots:
                self.visit(protocol, callee, {}, depth + 1)
        self.constant(protocol, name, function, depth)

    def constant(self, protocol, name, function, depth):
        if not re.match(r'k[A-Z0-9]', name):
            return
        for constant in self.constants(name, function):
            self.table(protocol, constant, function, depth)

    def table(self, protocol, constant, function, depth):
        if (protocol, id(constant)) in self.tables_done:
            return
        self.tables_done.add((protocol, id(constant)))
        try:
            self.read_table(protocol, constant, function, depth)
        except (IndexError, KeyError, ValueError, TypeError):
            self.open.setdefault((protocol, ANY), '%s: %s, not read' % (constant.file, constant.name))

    def read_table(self, protocol, constant, function, depth):
        value = constant.value
        if value[:1] in (['Rows'], ['LittleRows']):
            self.rows(protocol, constant, function, depth, ())
        elif value[:1] == ['Choices']:
            self.choices(protocol, constant, function, depth)
        elif 'BerRow' in constant.type:
            self.ber_rows(protocol, constant, function, depth)
        elif value[:1] == ['MakeNumberTexts'] or 'OctetText' in constant.type:   # lines that are made when this compiles
            for text in value:
                if text[:2] == '":':
                    self.emit(protocol, re.split(r'[\[=]', text[2:])[0], NUMBER)
        elif 'BerTitles' in constant.type:
            for text in value:
                self.emit(protocol, text[1:] if text[0] == '"' else '', NONE)
        elif 'BerType' in constant.type and value[:1] == ['{'] and 'Tagged' in value:
            for part in split(value[1:-1]):
                inner = Constant('', constant.type, part)
                inner.file = constant.file
                self.ber_type(protocol, inner, function, None, depth)
        elif 'BerType' in constant.type:
            self.ber_type(protocol, constant, function, None, depth)
        elif constant.file and constant.file.endswith('smb_rap_names.cpp') and 'SortedNames' not in value:
            for row in split(value[1:-1]):   # names of fields, a bar between them
                for text in [t for t in row if t[0] == '"'][1:]:
                    for name in text[1:].split('|'):
                        self.emit(protocol, name, NUMBER | TEXT | BYTES | TIME)
        anchor = function if function and constant.file == function.file else Anchor(constant.file, function)
        for token in value:
            if token[0].isalpha() and token != constant.name:
                self.refer(protocol, token, anchor, depth + 1)

    def rows(self, protocol, constant, function, depth, titles):
        start = constant.value.index('(') if '(' in constant.value else -1
        if start < 0 or constant.value[:1] not in (['Rows'], ['LittleRows']):
            return
        inside = constant.value[start + 1:closing(constant.value, start)]
        if inside[:1] == ['{']:
            inside = inside[1:closing(inside, 0)]
        for row in split(inside):
            self.row(protocol, row, function, depth, titles)

    def row(self, protocol, row, function, depth, titles):
        form = row[0]
        if row[1:2] == ['<'] and '(' in row:   # Shown<Record>(...)
            row = row[:1] + row[row.index('('):]
        if len(row) == 1 or row[1] != '(':   # a row of its own that several tables hold
            for constant in self.constants(form, function):
                if constant.value[1:2] == ['(']:
                    self.row(protocol, constant.value, function, depth, titles)
            return
        if form not in ROW_KINDS and form not in ('Counted', 'Terminated', 'Flags', 'Shown'):
            for made in self.rows_made(form, split(row[2:closing(row, 1)]), function):
                self.row(protocol, made, function, depth + 1, titles)
            return
        if form not in ROW_KINDS and form not in ('Counted', 'Terminated', 'Flags', 'Shown'):
            return
        arguments = split(row[2:closing(row, 1)])
        if form in ('Counted', 'Terminated'):
            inner = arguments[-1]
            if form == 'Counted':
                for label in self.row_labels(inner, function, titles):
                    self.emit(protocol, label + ' Length', NUMBER)
            return self.row(protocol, inner, function, depth, titles)
        labels = self.row_labels(row, function, titles)
        for label in sorted(labels):
            if form != 'Shown':
                self.emit(protocol, label, ROW_KINDS.get(form, NUMBER) | ROW)
        if form == 'Flags':
            for name in self.strings(arguments[2], function, {}):
                self.emit(protocol, name, NUMBER)
        if form == 'Shown':
            for callee in self.sources.find(self.sources.functions, arguments[-1][0], function.file if function else ''):
                env = {callee.params[2]: frozenset(labels)} if len(callee.params) > 2 and callee.params[2] else {}
                self.visit(protocol, callee, env, depth + 1)

    def rows_made(self, name, arguments, function):
        """What a function of the decoder makes of its arguments: a row."""
        for maker in self.sources.find(self.sources.functions, name, function.file if function else ''):
            given = dict(zip(maker.params, arguments))
            for i, token in enumerate(maker.body):
                start = i + 2
                if token == 'return' and maker.body[start:start + 1] == ['<']:   # Shown<Record>(...)
                    start = maker.body.index('>', start) + 1
                if token == 'return' and maker.body[start:start + 1] == ['(']:
                    made = [maker.body[i + 1]]
                    for part in maker.body[start:closing(maker.body, start) + 1]:
                        made += given.get(part, [part])
                    if made[0] != name:
                        yield made

    def row_labels(self, row, function, titles):
        arguments = split(row[2:closing(row, 1)])
        if row[0] in ('Counted', 'Terminated'):
            return self.row_labels(arguments[-1], function, titles)
        for argument in arguments:   # the first that is a text, or none
            if argument == ['nullptr']:
                return set(titles)
            found = self.strings(argument, function, {}) - {ANY} if argument[0][0] in '"k' else ()
            if found:
                return found
        return set()

    def choices(self, protocol, constant, function, depth):
        start = constant.value.index('(')
        inside = constant.value[start + 2:closing(constant.value, start) - 1]
        anchor = function if function and constant.file == function.file else Anchor(constant.file, function)
        for choice in split(inside):
            cells = split(choice[1:-1])
            if len(cells) < 3:
                continue
            for rows in self.constants(cells[2][0], anchor):
                self.rows(protocol, rows, anchor, depth, self.strings(cells[1], anchor, {}))

    def ber_form(self, value):
        for helper in self.sources.functions.get(value[0], ()) if value else ():   # it makes the type
            return next((t for t in helper.body if t in BER_FORMS), '')
        for token in value:
            if token in BER_FORMS:
                return token
        return ''

    def ber_rows(self, protocol, constant, function, depth):
        anchor = function if function and constant.file == function.file else Anchor(constant.file, function)
        value = constant.value
        rows = split(value[1:-1])
        if not any(row[:1] == ['{'] for row in rows):
            rows = [['{'] + value[1:-1] + ['}']]
        for row in rows:
            cells = split(row[1:-1])
            if len(cells) > 2:
                for title in sorted(self.strings(cells[1], anchor, {}) - {ANY}):
                    self.ber_row(protocol, title, [t for t in cells[2] if t != '&'], anchor, depth)

    def rows_in_code(self, protocol, function, depth):
        """Rows of elements that stand in calls and variables."""
        body = function.body
        if 'ShowBerRow' not in function.names and 'BerRow' not in function.names:
            return
        for i in range(len(body) - 4):
            if body[i] == '{' and (body[i - 1] == ',' or body[i - 2] == 'BerRow'):
                cells = split(body[i + 1:closing(body, i)])
                if len(cells) == 3 and ('&' in cells[2] or cells[2][0] == 'ValueOf'):
                    for title in sorted(self.strings(cells[1], function, {}) - {ANY}):
                        self.ber_row(protocol, title, [t for t in cells[2] if t != '&'], function, depth)

    def ber_row(self, protocol, title, reference, anchor, depth):
        found = self.constants(reference[0], anchor) if reference else []
        for chooser in self.sources.find(self.sources.functions, reference[0], anchor.file) if reference else ():
            found = [c for t in chooser.body if re.match(r'k[A-Z]', t) for c in self.constants(t, chooser)]
        for value in anchor.variables.get(reference[0], ())[:1] if reference and not found else ():
            found = [Constant('', ['BerType'], value)]
        form = self.ber_form(found[0].value) if found else ''
        self.emit(protocol, title, NUMBER if form in ('kNumber', 'kInteger') else TEXT)
        for constant in (c for c in found if 'BerType' in c.type):
            self.ber_type(protocol, constant, anchor, title, depth)

    def ber_type(self, protocol, constant, function, title, depth):
        form, value = self.ber_form(constant.value), constant.value
        anchor = function if function and constant.file == function.file else Anchor(constant.file, function)
        label = next((t[1:] for t in value if t[0] == '"'), None)
        name = label or title
        if form in BER_HOLDERS and name:
            for ending in (' Type', ' Length'):
                self.emit(protocol, (name if form != 'kList' else title or name) + ending, TEXT)
        if form == 'kOctets' and label:
            self.emit(protocol, label, NONE)
        if form == 'kTagged' and label:
            for ending in (' Type', ' Length'):
                self.emit(protocol, label + ending, TEXT)
        if form == 'kList' and label:
            inner = [t for t in value if re.match(r'k[A-Z]', t) and t not in BER_FORMS]
            self.ber_row(protocol, label, inner[:1], anchor, depth)
        for token in value:
            if token in anchor_locals(anchor) or not re.match(r'[kA-Z]', token):
                continue
            for callee in self.sources.find(self.sources.functions, token, constant.file or ''):
                if callee.params and title and 'title' in callee.params:
                    self.visit(protocol, callee, {'title': frozenset([title])}, depth + 1)
        if form == 'kBits':
            for token in value:
                for bits in self.constants(token, anchor) if re.match(r'k[A-Z]', token) else ():
                    for text in bits.value:
                        if text[0] == '"':
                            self.emit(protocol, text[1:], NUMBER)


class Anchor:
    """The file that a table's names are looked up from, with the tables of the function it stands in."""
    def __init__(self, file, function):
        self.file = file or (function.file if function else '')
        self.locals = function.locals if function and not file else {}
        self.rows_of, self.params, self.calls, self.body = {}, [], [], []
        self.variables = function.variables if function and not file else {}


def anchor_locals(anchor):
    return anchor.locals


KIND_NAMES = {'number': NUMBER, 'text': TEXT, 'address': ADDRESS, 'bytes': BYTES, 'time': TIME, 'none': NONE}
# Which argument is the text.
ADDERS = {'AddLine': 2, 'AddBitLine': 2, 'AddBlock': 2, 'AddDecodeLine': 2, 'AddDataBlock': 5, 'AddDataBlockClamped': 6,
          'AddDataBlockClampedOut': 6, 'AddCountedString': 6, 'AddBitRows': 5, 'AddWrappedTextLines': 4,
          'AddMadeLine': 2}
TEXT_ADDERS = ('AddBitRows', 'AddWrappedTextLines', 'AddCountedString')
# Row forms are read from their tables, raw data has no key.
OPAQUE = {'ShowRows', 'ReadRows', 'PeekRows', 'ShowElements', 'ShowChoice', 'AddRawRest', 'AddRawData', 'AddHexDumpLines',
          'FormatInto', 'LookupName', 'Under', 'Deeper', 'AppendToLine', 'AppendToParent',
          'SetLine', 'CustomLibraries', 'OfferPayload',
          'CallDecoder', 'TryDecoder'}
ROW_KINDS = {'Number': NUMBER, 'Hex': NUMBER, 'Signed': NUMBER, 'Bits': NUMBER, 'Flag': NUMBER, 'Coded': NUMBER, 'Flags': NUMBER,
             'Float': TEXT, 'Bytes': BYTES, 'Text': TEXT, 'Utf8': TEXT, 'Utf16': TEXT, 'IPv4': ADDRESS, 'IPv6': ADDRESS,
             'Mac': ADDRESS, 'Eui64': ADDRESS, 'UnixTime': TIME, 'UnixMilliseconds': TIME, 'NtpTime': TIME,
             'NtpSpan': TIME, 'FileTime': TIME}
BER_FORMS = {'kNumber', 'kInteger', 'kBoolean', 'kText', 'kTime', 'kBits', 'kOctets', 'kGroup', 'kRepeated', 'kRecord',
             'kList', 'kTagged', 'kChoice', 'kInside', 'kRaw', 'kShown'}
BER_HOLDERS = {'kGroup', 'kRepeated', 'kRecord', 'kList', 'kInside'}


# Of the packet itself, and of no line.
PACKET_KEYS = {'Length': NUMBER, 'Captured': NUMBER, 'Source': ADDRESS | TEXT, 'Destination': ADDRESS | TEXT,
               'Protocol': TEXT, 'Summary': TEXT}


def source_paths():
    paths = ['core/frame_entry.cpp', 'core/blocks.cpp']
    for folder in ('decoders', ):
        for base, _, names in sorted(os.walk(os.path.join(ROOT, folder))):
            paths += [os.path.relpath(os.path.join(base, name), ROOT) for name in sorted(names)
                      if name.endswith(('.cpp', '.h')) and not name.endswith('_summary.cpp')]
    return paths


def registry_roots():
    roots = []
    with open(os.path.join(ROOT, 'decoders/registry_rows.inc'), encoding='utf-8') as rows:
        for match in re.finditer(r'^QX_PROTOCOL\("([^"]+)", "([^"]+)", (\w+)', rows.read(), re.M):
            roots.append(match.groups())
    roots.append(('3Com NBP', 'nbp', 'DecodeNbp'))
    return roots


def scan():
    sources = Sources(source_paths())
    roots = registry_roots()
    found = Scan(sources, {decoder for _, _, decoder in roots})
    for _, key, decoder in roots:
        for function in sources.functions.get(decoder, ()):
            found.visit(key, function, {})
    for label, kinds in PACKET_KEYS.items():
        found.emit('frame', label, kinds)
    for function in sources.functions['DecodeFrame']:
        found.visit('frame', function, {})
    return found


def main():
    words = sys.argv[1:]
    if len(words) != 1 or (words[0].startswith('-') and words[0] != '--open'):
        sys.exit(__doc__)   # an option that is none is no file to write
    sys.setrecursionlimit(20000)
    found = scan()
    if sys.argv[1:] == ['--open']:
        for (protocol, label), where in sorted(found.open.items()):
            print('%-10s %-40s %s' % (protocol, label, where))
        return
    lines = ['{"%s", "%s", %d},' % (key, label.replace('\\', '\\\\').replace('"', '\\"'), kinds)
             for key, (label, kinds) in sorted(found.keys.items())]
    text = '\n'.join(lines) + '\n'
    if os.path.exists(sys.argv[1]):
        with open(sys.argv[1], encoding='utf-8') as before:
            if before.read() == text:
                return   # nothing is compiled anew
    with open(sys.argv[1], 'w', encoding='utf-8') as out:
        out.write(text)


if __name__ == '__main__':
    main()
