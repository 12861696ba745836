#!/usr/bin/env python3
"""samples/cluster: many captures over hosts in network namespaces, one of which dies in the middle; and the mapper's protocol."""
import os
import shutil
import subprocess
import tempfile
import threading
import time
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
QXVIEW = os.environ.get("QXVIEW", os.path.join(ROOT, "build", "qxview"))
CLUSTER = os.path.join(ROOT, "samples", "cluster")
FIELDS = ["fields", "--format", "tsv", "--no-header", "--prefix-file", "-e", "frame.number", "-e", "ip.src"]


def can_make_hosts():
    tools = all(shutil.which(tool) for tool in ("ip", "parallel", "ssh", "ssh-keygen")) and os.path.exists("/usr/sbin/sshd")
    return tools and os.geteuid() == 0 and subprocess.run(["ip", "netns", "add", "qxprobe"], capture_output=True).returncode == 0


class Folder(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp()
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)

    def captures(self, count):
        """So many captures of their own names, and a list of them."""
        paths = []
        for i in range(count):
            paths.append(os.path.join(self.folder, f"capture {i:03}.pcap"))
            shutil.copy(os.path.join(ROOT, "samples", ("dns.pcap", "vlan.pcap", "ntp.pcap")[i % 3]), paths[-1])
        return paths

    def listed(self, paths):
        path = os.path.join(self.folder, "captures.txt")
        with open(path, "w", encoding="utf-8") as file:
            file.write("".join(name + "\n" for name in paths))
        return path

    def one_by_one(self, paths):
        return [line for path in paths for line in
                subprocess.run([QXVIEW, *FIELDS, path], capture_output=True, text=True).stdout.splitlines()]


class Mapper(Folder):
    def test_paths_in_records_out_counters_beside(self):
        paths = self.captures(5)
        wrong = os.path.join(self.folder, "no capture")
        with open(wrong, "w", encoding="ascii") as file:
            file.write("text")
        lines = f"{paths[0]}\n17\t{paths[1]}\n{wrong}\n0\t{paths[2]}\n"
        result = subprocess.run([os.path.join(CLUSTER, "mapper.sh"), *FIELDS], input=lines, capture_output=True, text=True,
                                env={**os.environ, "QXVIEW": QXVIEW}, timeout=60)
        self.assertEqual(result.returncode, 0, result.stderr)
        expected = self.one_by_one(paths[:3])
        self.assertEqual(result.stdout.splitlines(), expected)
        counters = dict(line.split(":", 2)[2].rsplit(",", 1) for line in result.stderr.splitlines()
                        if line.startswith("reporter:counter:"))
        self.assertEqual(counters, {"qxview,captures": "4", "qxview,records": str(len(expected)),
                                    "qxview,unreadable captures": "1"})
        self.assertIn("no capture", result.stderr)

    def test_nothing_and_what_no_run_can_do(self):
        mapper = os.path.join(CLUSTER, "mapper.sh")
        environment = {**os.environ, "QXVIEW": QXVIEW}
        empty = subprocess.run([mapper, *FIELDS], input="", capture_output=True, text=True, env=environment, timeout=60)
        self.assertEqual((empty.returncode, empty.stdout), (0, ""))
        wrong = subprocess.run([mapper, "fields", "-e", "no.such_key"], input="x\n", capture_output=True, text=True,
                               env=environment, timeout=60)
        self.assertEqual(wrong.returncode, 2)


@unittest.skipUnless(can_make_hosts(), "this takes root, network namespaces, ssh and GNU parallel")
class Hosts(Folder):
    COUNT = 3

    @classmethod
    def tearDownClass(cls):
        subprocess.run(["ip", "netns", "del", "qxprobe"], capture_output=True)

    def ip(self, *words, host=None):
        where = ["-n", f"qxhost{host}"] if host is not None else []
        subprocess.run(["ip", *where, *words], check=True)

    def start_hosts(self):
        """Hosts on a bridge, each with an ssh server; whoever runs the test reaches them."""
        key = os.path.join(self.folder, "key")
        subprocess.run(["ssh-keygen", "-q", "-t", "ed25519", "-N", "", "-f", key], check=True)
        os.makedirs("/run/sshd", exist_ok=True)
        self.ip("link", "add", "qxbridge", "type", "bridge")
        self.addCleanup(subprocess.run, ["ip", "link", "del", "qxbridge"], capture_output=True)
        self.ip("addr", "add", "198.18.77.1/24", "dev", "qxbridge")
        self.ip("link", "set", "qxbridge", "up")
        self.servers = []
        for i in range(self.COUNT):
            self.ip("netns", "add", f"qxhost{i}")
            self.addCleanup(subprocess.run, ["ip", "netns", "del", f"qxhost{i}"], capture_output=True)
            self.ip("link", "add", f"qxlink{i}", "type", "veth", "peer", "name", "eth0", "netns", f"qxhost{i}")
            self.ip("link", "set", f"qxlink{i}", "master", "qxbridge", "up")
            self.ip("addr", "add", f"198.18.77.{i + 10}/24", "dev", "eth0", host=i)
            self.ip("link", "set", "eth0", "up", host=i)
            self.ip("link", "set", "lo", "up", host=i)
            self.servers.append(subprocess.Popen(
                ["ip", "netns", "exec", f"qxhost{i}", "/usr/sbin/sshd", "-D", "-f", "/dev/null", "-h", key, "-o", "UsePAM=no",
                 "-o", f"AuthorizedKeysFile={key}.pub", "-o", "StrictModes=no", "-o", "PidFile=none", "-o", "MaxStartups=100"],
                stderr=subprocess.DEVNULL))
            self.addCleanup(self.kill_host, i)
        wrapper = os.path.join(self.folder, "ssh")
        with open(wrapper, "w", encoding="ascii") as file:
            file.write(f'#!/bin/sh\nexec {shutil.which("ssh")} -i {key} -o StrictHostKeyChecking=no -o LogLevel=ERROR '
                       '-o UserKnownHostsFile=/dev/null "$@"\n')
        os.chmod(wrapper, 0o755)
        hosts = os.path.join(self.folder, "hosts")
        with open(hosts, "w", encoding="ascii") as file:
            file.write("".join(f"2/root@198.18.77.{i + 10}\n" for i in range(self.COUNT)))
        return hosts, {**os.environ, "PATH": self.folder + ":" + os.environ["PATH"]}

    def kill_host(self, host):
        """The machine is gone: nobody answers, and nothing runs there any more."""
        subprocess.run(["ip", "-n", f"qxhost{host}", "link", "set", "eth0", "down"], capture_output=True)
        inside = subprocess.run(["ip", "netns", "pids", f"qxhost{host}"], capture_output=True, text=True).stdout.split()
        subprocess.run(["kill", "-9", *inside], capture_output=True)
        self.servers[host].wait()

    def test_a_host_that_dies_loses_and_doubles_nothing(self):
        paths = self.captures(60)
        damaged = paths[7]
        with open(damaged, "r+b") as file:
            file.truncate(100)
        hosts, environment = self.start_hosts()
        slow = os.path.join(self.folder, "slow_qxview")   # so that the host dies within a piece
        with open(slow, "w", encoding="ascii") as file:
            file.write(f'#!/bin/sh\n"{QXVIEW}" "$@"; status=$?; sleep 0.4; exit $status\n')
        os.chmod(slow, 0o755)
        out = os.path.join(self.folder, "out")

        def kill_in_the_middle():
            end = time.monotonic() + 60
            while time.monotonic() < end:
                if os.path.isdir(out) and any(".part" in name for name in os.listdir(os.path.join(out, "pieces"))):
                    time.sleep(0.2)
                    return self.kill_host(1)
                time.sleep(0.02)
            return None
        killer = threading.Thread(target=kill_in_the_middle)
        killer.start()
        result = subprocess.run(
            [os.path.join(CLUSTER, "decode_captures.sh"), hosts, self.listed(paths), out, *FIELDS], capture_output=True, text=True,
            env={**environment, "QXVIEW": slow, "PIECE": "5"}, timeout=240)
        killer.join()
        self.assertEqual(result.returncode, 3, result.stdout + result.stderr)
        with open(os.path.join(out, "records"), encoding="utf-8") as file:
            self.assertEqual(file.read().splitlines(), self.one_by_one(paths))
        with open(os.path.join(out, "unreadable"), encoding="utf-8") as file:
            said = file.read()
        self.assertIn(damaged, said)
        self.assertNotIn(paths[8], said)


if __name__ == "__main__":
    unittest.main()
