#!/usr/bin/env python3
"""Checks the rows of the registry that are Plain(): a pass without lines does not call their decoders, so these may keep
and ask for nothing.

    scripts/check_plain.py            names what the decoder of a plain row reaches and must not
    scripts/check_plain.py --list     the rows whose decoders reach nothing of the kind, plain or not

From a decoder it follows every name that is a function or a table of the decoders, in the same file or outside of unnamed
namespaces, whether it is called or not, so what it finds may be too much and never too little.
"""
import re
import sys

from cpp_sources import ROOT, Sources
from list_keys import source_paths

# State between frames, other protocols, what the engine holds, and what asks the host.
MUST_NOT = {'Recall', 'Remember', 'Revise', 'Forget', 'RecallFromHost', 'UnrecordedTable', 'StateOf', 'Learn', 'OfferPayload',
            'OfferFrame', 'OfferExternal', 'CallDecoder', 'TryDecoder', 'ReachLayer', 'DecodeFrame', 'DecodeMacHeader',
            'DecodeEthernetHeader', 'DecodeLlc', 'DispatchEthertype', 'FindMedium', 'FindEthertype', 'FindIpProtocol',
            'FindIPv6NextHeader', 'FindBuiltinDecoder', 'FindLinkEncapsulation', 'FindLlcService', 'KeyedAs', 'PacketOf',
            'PacketState', 'QXVIEW_HOST_FUNCTION', 'static', 'OpenedCursor'}
# Of the frame's state and of the host this is only read.
MAY_READ = {'sourcePort', 'destinationPort', 'ipProtocol', 'frame', 'limitReached', 'linesLeft', 'source', 'destination', 'network',
            'quoted', 'matchedSource'}
MAY_ASK = {'addressAlias', 'findMibEntry'}
ROW = re.compile(r'^QX_PROTOCOL\("([^"]+)", "([^"]+)", (\w+),((?:[^"\n]|\n(?!QX_|//|\n))*)', re.M)


def rows():
    with open(ROOT + '/decoders/registry_rows.inc', encoding='utf-8') as source:
        return [(m[1], m[2], m[3], 'Plain()' in m[4]) for m in ROW.finditer(source.read())]


class Reach:
    def __init__(self):
        self.sources = Sources(source_paths())
        self.known = {}

    def wrong_in(self, body):
        """The names of a body that must not be reached."""
        for i, token in enumerate(body):
            if token not in MUST_NOT:
                continue
            before, behind = body[max(i - 6, 0):i], body[i + 1:]
            if token == 'PacketOf' and behind[:1] == ['(']:
                member = behind[behind.index(')') + 1:][:4]
                is_set = member[2:3] == ['='] and member[3:] != ['=']
                if member[:1] == ['.'] and member[1] in MAY_READ and not is_set:
                    continue
                if before[-5:-2] == ['const', 'PacketState', '&']:
                    continue
            if token == 'PacketState' and before[-1:] == ['const'] and behind[0] == '&':
                continue
            if token == 'static' and behind[0] in ('const', 'constexpr'):
                continue
            if token == 'QXVIEW_HOST_FUNCTION' and behind[behind.index(')') - 1] in MAY_ASK:
                continue
            yield token

    def of(self, name, path, seen, way):
        """What must not be reached from a name that a source has: the way there, or nothing."""
        found = [f for f in self.sources.find(self.sources.functions, name, path)]
        tables = [c for c in self.sources.find(self.sources.constants, name, path)]
        for each in found + tables:
            if id(each) in seen:
                continue
            seen.add(id(each))
            body = each.body if hasattr(each, 'body') else each.value
            for wrong in self.wrong_in(body):
                return way + [name, wrong]
            for token in {t for t in body if re.match(r'[A-Za-z_]\w*$', t)}:
                further = self.of(token, each.file or path, seen, way + [name])
                if further:
                    return further
        return []


def main():
    sys.setrecursionlimit(20000)
    reach, bad = Reach(), 0
    for name, key, decoder, is_plain in rows():
        way = reach.of(decoder, '', set(), [])
        if sys.argv[1:] == ['--list']:
            print('%-5s %-40s %-16s %s' % ('plain' if is_plain else 'may' if not way else '-', name, key, ' > '.join(way)))
        elif is_plain and way:
            print('%s: %s' % (name, ' > '.join(way)))
            bad += 1
    return 1 if bad else 0


if __name__ == '__main__':
    sys.exit(main())
