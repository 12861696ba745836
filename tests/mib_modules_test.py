#!/usr/bin/env python3
"""MIB modules beside the built-in names: they are found, name what they define, and say where they are wrong."""
import os
import subprocess
import sys
import tempfile
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
QXVIEW = os.environ.get("QXVIEW", os.path.join(ROOT, "build", "qxview"))
TRAP = "136"   # the packet of samples/snmp.pcap with a trap of the agent's example objects

# As much of the base module as the example needs.
BASE = """SNMPv2-SMI DEFINITIONS ::= BEGIN
org OBJECT IDENTIFIER ::= { iso 3 }
dod OBJECT IDENTIFIER ::= { org 6 }
internet OBJECT IDENTIFIER ::= { dod 1 }
private OBJECT IDENTIFIER ::= { internet 4 }
enterprises OBJECT IDENTIFIER ::= { private 1 }
Integer32 ::= INTEGER (-2147483648..2147483647)
MODULE-IDENTITY MACRO ::= BEGIN END
OBJECT-TYPE MACRO ::= BEGIN END
END
"""
EXAMPLE = """HEART-MIB DEFINITIONS ::= BEGIN
IMPORTS MODULE-IDENTITY, OBJECT-TYPE, enterprises, Integer32 FROM SNMPv2-SMI;
heartMIB MODULE-IDENTITY LAST-UPDATED "202601010000Z" ORGANIZATION "x" CONTACT-INFO "x" DESCRIPTION "x"
  REVISION "202601010000Z" DESCRIPTION "x" ::= { enterprises 8072 2 }
heartObjects OBJECT IDENTIFIER ::= { heartMIB 3 2 }
heartRate OBJECT-TYPE SYNTAX Integer32 (0..100) MAX-ACCESS read-write STATUS current DESCRIPTION "x"
  ::= { heartObjects 1 }
END
"""


class Modules(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.write("SNMPv2-SMI", BASE)

    def write(self, name, text):
        with open(os.path.join(self.folder.name, name), "w", encoding="ascii") as file:
            file.write(text)

    def decode(self, modules):
        done = subprocess.run(
            [QXVIEW, "decode", "--color=never", "--packets", TRAP, "--set", f"MibPath={self.folder.name}", "--set",
             f"MibModules={modules}", os.path.join(ROOT, "samples", "snmp.pcap")], capture_output=True, timeout=60,
            env={**os.environ, "XDG_CONFIG_HOME": "/nonexistent"}, check=False)
        words = done.stderr.decode()
        if "libsmi is not on this machine" in words or "not available on Windows" in words:
            self.skipTest("modules cannot be loaded here")
        return done.returncode, done.stdout.decode(), words.replace(self.folder.name, "FOLDER")

    def test_names_what_a_module_defines(self):
        for name in ("HEART-MIB", "HEART-MIB.txt", "HEART-MIB.mib"):
            self.write(name, EXAMPLE)
            status, text, words = self.decode(" HEART-MIB ,")
            os.remove(os.path.join(self.folder.name, name))
            self.assertEqual((status, words), (0, ""))
            name = "private.enterprises.netSnmp.heartMIB.netSnmpExampleNotifications.heartObjects.heartRate"
            self.assertIn(f"Object Name  : 1.3.6.1.4.1.8072.2.3.2.1 ({name})\n", text)
            self.assertIn(".heartRate, Integer32, read-write (1.3.6.1.4.1.8072.2.3.2.1)\n", text)

    def test_says_what_is_wrong_and_where(self):
        self.write("CUT-MIB", EXAMPLE.replace("HEART-MIB", "CUT-MIB").replace("{ heartMIB 3 2 }", "{ heartMIB 3 "))
        self.write("WORDS-MIB", "These are words.\n")
        self.write("LACKS-MIB", EXAMPLE.replace("HEART-MIB", "LACKS-MIB").replace("SNMPv2-SMI", "NOT-THERE-SMI"))
        self.write("HEART-MIB", EXAMPLE)
        for modules, expected in (
                ("NOWHERE-MIB", r"qxview: MibModules: module NOWHERE-MIB: failed to locate .*\n"),
                ("HEART-MIB,NOWHERE-MIB", r"qxview: MibModules: module NOWHERE-MIB: failed to locate .*\n"),
                ("CUT-MIB", r"qxview: MibModules: module CUT-MIB: FOLDER/CUT-MIB:6: syntax error.*\n"),
                ("WORDS-MIB", r"qxview: MibModules: module WORDS-MIB: FOLDER/WORDS-MIB:1: syntax error.*\n"),
                ("LACKS-MIB", r"qxview: MibModules: module LACKS-MIB: FOLDER/LACKS-MIB:2: .*`NOT-THERE-SMI'\n")):
            status, text, words = self.decode(modules)
            self.assertEqual((status, text), (3, ""), modules)
            self.assertRegex(words, f"^{expected}$", modules)


    def test_are_not_read_where_nothing_is_decoded(self):
        self.write("view.ini", "[View]\nMibModules = NOWHERE-MIB\n")
        done = subprocess.run([QXVIEW, "protocols", "--settings", os.path.join(self.folder.name, "view.ini")],
                              capture_output=True, check=False)
        self.assertEqual((done.returncode, done.stderr), (0, b""))


class Table(unittest.TestCase):
    def test_is_made_from_the_list(self):
        script = os.path.join(ROOT, "scripts", "make_mib_table.py")
        self.assertEqual(subprocess.run([sys.executable, script, "--check"], stdout=subprocess.DEVNULL).returncode, 0)


if __name__ == "__main__":
    unittest.main()
