"""What the scripts that compare qxview with tshark over captures share: the questions' answers, kept in a folder, and why
answers may differ.

A difference counts as explained when a Reason names its question and the packets it is about are all found by the reason's
proof, a filter of tshark. So an explanation is checked anew for each packet of each run.
"""
import argparse
import collections
import concurrent.futures
import csv
import dataclasses
import hashlib
import os
import re
import subprocess
import tempfile
import threading
import zlib

# Packets are taken one by one, and numbers as they stand in them.
SAME = ["-n", "-o", "tcp.relative_sequence_numbers:false", "-o", "tcp.desegment_tcp_streams:false", "-o", "ip.defragment:false",
        "-o", "ipv6.defragment:false", "-o", "tcp.reassemble_out_of_order:false"]
SCRIPT = """
for i, text in ipairs({%s}) do
  local numbers = {}
  local listener = Listener.new("frame", text)
  function listener.packet(packet) numbers[#numbers + 1] = packet.number end
  function listener.draw() print("filter " .. i .. " " .. table.concat(numbers, ",")) end
end
"""


class Peer:
    """tshark; with a folder, what it said is kept there by the file and the arguments."""

    def __init__(self, cache):
        self.cache = cache
        if cache:
            os.makedirs(cache, exist_ok=True)
        self.version = subprocess.run(["tshark", "--version"], capture_output=True, check=True).stdout.splitlines()[0]

    def ask(self, path, *words, script=""):
        """Its standard output; `script` is one in Lua that runs beside."""
        state = os.stat(path)
        mark = repr((os.path.realpath(path), state.st_size, state.st_mtime_ns, self.version, words, script)).encode()
        kept = self.cache and os.path.join(self.cache, hashlib.sha256(mark).hexdigest())
        if kept and os.path.exists(kept):
            with open(kept, "rb") as file:
                return zlib.decompress(file.read()).decode("utf-8", "replace")
        with tempfile.NamedTemporaryFile("w", suffix=".lua") as file:
            file.write(script)
            file.flush()
            more = ["-X", "lua_script:" + file.name] if script else []
            said = subprocess.run(["tshark", *more, "-r", path, *SAME, *words], capture_output=True, check=False)
        if script and b"filter 1 " not in said.stdout:
            raise RuntimeError(f"{path}: {said.stderr.decode()}")
        if kept:
            with tempfile.NamedTemporaryFile(dir=self.cache, delete=False) as file:
                file.write(zlib.compress(said.stdout, 1))
            os.rename(file.name, kept)
        return said.stdout.decode("utf-8", "replace")

    def find(self, path, text):
        """The numbers of the packets that a filter finds: of all, while `packets` leaves out those that break off in what an error
        of ICMP quotes."""
        return {int(number) for number in self.ask(path, "-Y", text, "-T", "fields", "-e", "frame.number").split()}

    def capinfos(self, path):
        """Packets, bytes, nanoseconds of the earliest and of the latest; nothing of a damaged file."""
        said = subprocess.run(["capinfos", "-T", "-r", "-M", "-S", "-c", "-d", "-a", "-e", path], capture_output=True, check=False)
        return None if said.returncode else said.stdout.decode("utf-8", "replace").rstrip("\n").split("\t")[1:]

    def packets(self, path, filters, *words):
        """The numbers of the packets that each filter finds, and what else is said for `words`, in one run."""
        if not filters:
            return [], self.ask(path, *words) if words else ""
        script = SCRIPT % ", ".join(f"[==[{text}]==]" for text in filters)
        found, rest = [[] for _ in filters], []
        for line in self.ask(path, "-q", *words, script=script).splitlines():
            matched = re.fullmatch(r"filter (\d+) ([\d,]*)", line)
            if matched:
                found[int(matched[1]) - 1] = [int(number) for number in matched[2].split(",") if number]
            else:
                rest.append(line)
        return [set(numbers) for numbers in found], "\n".join(rest)


@dataclasses.dataclass
class Reason:
    """Why questions are answered otherwise on purpose."""
    questions: str        # regular expression: what is asked, or part of it
    proof: str            # a filter of tshark that finds all packets that differ for this
    text: str
    only: str = ""        # "ours": packets that qxview alone finds, "theirs": that tshark alone finds; else either
    values: object = None   # of columns: whether these two lists of values differ for this


@dataclasses.dataclass
class Difference:
    kind: str
    question: str
    path: str
    packets: dict         # number: (side, what to show)
    least: float = 0      # how much of them has to be explained, where not all do
    weights: dict = dataclasses.field(default_factory=dict)   # of packets, 1 each where none is said


class Ledger:
    """What was asked, and how it came out."""

    def __init__(self, reasons, show):
        self.reasons, self.show = reasons, show
        self.counts = collections.Counter()
        self.explained = collections.Counter()
        self.shown = collections.Counter()
        self.lock = threading.Lock()

    def judge(self, peer, differences):
        """Explains the differences of one capture, packet by packet."""
        if not differences:
            return
        wanted = []
        for difference in differences:
            wanted += [reason for reason in self.reasons if re.search(reason.questions, difference.question) and reason not in wanted]
        proofs = sorted({reason.proof for reason in wanted if reason.proof})
        found, _ = peer.packets(differences[0].path, proofs)
        proven = dict(zip(proofs, found))
        whole = {}

        def holds(reason, number):
            if not reason.proof or number in proven[reason.proof]:
                return True
            if reason.proof not in whole:
                whole[reason.proof] = peer.find(differences[0].path, reason.proof)
            return number in whole[reason.proof]

        for difference in differences:
            explained, left, weight = collections.Counter(), {}, 0
            for number, (side, shown) in difference.packets.items():
                fitting = [reason for reason in wanted if re.search(reason.questions, difference.question) and reason.only in ("", side) and
                           (reason.values is None or len(shown) == 2 and reason.values(*shown))]
                fitting.sort(key=lambda reason: number not in proven.get(reason.proof, [number]))
                reason = next((reason for reason in fitting if holds(reason, number)), None)
                if reason:
                    explained[self.reasons.index(reason)] += 1
                    weight += difference.weights.get(number, 1)
                else:
                    left[number] = (side, shown)
            if difference.least and weight >= difference.least:
                left = {}
            with self.lock:
                self.take(difference, explained, left)

    def take(self, difference, explained, left):
        self.explained.update(explained)
        how = "differ" if left else "explained"
        self.counts[difference.kind, how] += 1
        if left and self.shown[difference.question] < self.show:
            self.shown[difference.question] += 1
            print(f"{difference.question}: {os.path.basename(difference.path)}: {len(left)} packets:",
                  *[f"{number} {side} {shown}" for number, (side, shown) in list(left.items())[:3]], flush=True)

    def tell(self):
        for kind in sorted({kind for kind, _ in self.counts}):
            print(f"{kind}: " + ", ".join(f"{self.counts[kind, how]} {how}" for how in ("same", "explained", "differ")))
        for index, reason in enumerate(self.reasons):
            print(f"{self.explained[index]:7} packets: {reason.questions}: {reason.text} [{reason.proof}]")
        return 1 if any(how == "differ" for _, how in self.counts) else 0


def run_qxview(program, *words):
    """Standard output as bytes. --modern: what the packet holds is shown as other tools do."""
    return subprocess.run([program, *words, "--modern"], capture_output=True, check=False).stdout


def list_captures(folder):
    """Path and protocols of each capture, the smallest first: from the folder's list where it has one."""
    captures = []
    index = os.path.join(folder, "INDEX.tsv")
    if os.path.exists(index):
        with open(index, encoding="utf-8") as lines:
            for row in csv.reader(lines, delimiter="\t"):
                if row[0] != "file" and len(row) > 4 and row[2].isdigit():
                    protocols = {word.split(":")[0] for word in row[4].split()}
                    captures.append((int(row[2]), os.path.join(folder, row[0]), protocols | {row[3].replace("ether", "eth")}))
    else:
        for name in os.listdir(folder):
            path = os.path.join(folder, name)
            said = subprocess.run(["tshark", "-r", path, "-T", "fields", "-e", "frame.protocols"], capture_output=True, check=False)
            captures.append((os.path.getsize(path), path, set(said.stdout.decode().replace(":", " ").split())))
    return [(path, protocols | {"frame"}) for _, path, protocols in sorted(captures, key=lambda one: one[:2])]


def parse_options(about, **more):
    parser = argparse.ArgumentParser(description=about, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("captures", help="a folder of captures")
    parser.add_argument("--qxview", default="build/qxview", help="the program, build/qxview if not said")
    parser.add_argument("--cache", help="a folder that keeps what tshark said, so that it is asked once")
    parser.add_argument("--every", type=int, default=1, help="take each N-th capture alone")
    parser.add_argument("--match", default="", help="take captures alone whose names match this regular expression")
    parser.add_argument("--show", type=int, default=5, help="unexplained differences shown for each question")
    parser.add_argument("--jobs", type=int, default=2)
    for name, words in more.items():
        parser.add_argument("--" + name, **words)
    return parser.parse_args()


def compare_all(options, captures, compare, ledger, peer):
    """`compare` gives of a capture the number of packets, counts of what was the same by kind, and differences."""
    chosen = [one for one in captures if re.search(options.match, os.path.basename(one[0]))][::options.every]

    def one(capture):
        packets, same, differences = compare(*capture)
        ledger.judge(peer, differences)
        return packets, same

    packets = 0
    with concurrent.futures.ThreadPoolExecutor(options.jobs) as pool:
        for count, same in pool.map(one, chosen):
            packets += count
            for kind, number in same.items():
                ledger.counts[kind, "same"] += number
    print(f"{len(chosen)} captures of {packets} packets")
    return ledger.tell()
