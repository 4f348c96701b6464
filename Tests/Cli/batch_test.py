"""Many files in one call: what is found, what is made, what is told, and what is left when it is stopped."""

import glob
import json
import os
import random
import signal
import subprocess
import time

from zortex_testing import *


def picture(seed, size=16, alpha=False):
    numbers = random.Random(seed)
    channels = RGBA if alpha else RGB
    return make_png(size, size, channels, 8, [numbers.randrange(256) for _ in range(size * size * CHANNELS[channels])])


class Batch(ProgramTest):
    def add(self, name, content):
        os.makedirs(os.path.dirname(self.path(name)) or ".", exist_ok=True)
        return self.write(name, content)

    def tree(self, folder):
        """The files below a folder and their bytes, without records."""
        found = {}
        for root, folders, names in os.walk(self.path(folder)):
            folders[:] = [name for name in folders if name != ".zortex"]
            for name in names:
                path = os.path.join(root, name)
                found[os.path.relpath(path, self.path(folder))] = self.read(path)
        return found

    def batch(self, code, *arguments, **options):
        result = self.run_program("convert", *arguments, **options)
        self.assertEqual(result.returncode, code, result.stderr)
        return result

    def statuses(self, report):
        return {entry["input"]: entry["status"] for entry in json.loads(self.read(report))["files"]}

    def good_files(self):
        names = ["art/a.png", "art/sub dir/b c.png", "art/sub dir/größe/d_n.png", "art/z.png"]
        for i, name in enumerate(names):
            self.add(name, picture(i))
        return names

    def test_bad_files_fail_alone(self):
        good = self.good_files()
        self.add("art/cut.png", picture(9)[:60])
        self.add("art/liar.ktx", b"\xabKTX 11\xbb\r\n\x1a\n" + b"\xff" * 52)
        self.add("art/ignored.txt", b"nothing")
        os.symlink("nowhere", self.path("art/dangling.png"))
        bad = ["art/cut.png", "art/dangling.png", "art/liar.ktx"]
        result = self.batch(1, "art", "--recursive", "--out-dir", "out", "--to", "ktx", "--keep-going", "--report", "report.json", "--json")
        self.assertEqual(json.loads(result.stdout), json.loads(self.read("report.json")))
        self.assertEqual(self.statuses("report.json"), {**dict.fromkeys(good, "converted"), **dict.fromkeys(bad, "failed")})
        self.assertEqual(set(self.tree("out")), {os.path.relpath(name, "art")[:-4] + ".ktx" for name in good})
        for name in bad:
            self.assertIn(f"zortex: {name}: ", result.stderr)
        entry = json.loads(self.read("report.json"))["files"][0]
        self.assertEqual((entry["input"], entry["format"], entry["width"], entry["height"]), ("art/a.png", "rgb888", 16, 16))
        self.assertEqual(entry["bytes"], len(self.read("out/a.ktx")))

    def test_first_failure_stops_without_keep_going(self):
        self.good_files()
        self.add("art/a0.png", b"no picture")
        self.batch(1, "art", "--recursive", "--out-dir", "out", "--jobs", "1", "--report", "report.json", "--quiet")
        statuses = self.statuses("report.json")
        self.assertEqual((statuses["art/a.png"], statuses["art/a0.png"], statuses["art/z.png"]), ("converted", "failed", "not run"))

    def test_jobs_shards_and_sources_make_the_same_bytes(self):
        good = self.good_files()
        options = ("--format", "etc2-rgb", "--quality", "0", "--mips", "--quiet")
        self.batch(0, "art", "--recursive", "--out-dir", "one", "--jobs", "1", *options)
        self.batch(0, "art", "--recursive", "--out-dir", "four", "--jobs", "4", *options)
        self.batch(0, "art/**/*.png", "--out-dir", "pattern", *options)
        self.write("list", "\n".join(good).encode() + b"\r\n\n")
        self.batch(0, "--list", "list", "--base", "art", "--out-dir", "listed", *options)
        seen = []
        for i in (1, 2, 3):
            self.batch(0, "art", "--recursive", "--out-dir", "shards", "--shard", f"{i}/3", "--report", f"shard{i}.json", *options)
            seen.append(set(self.statuses(f"shard{i}.json")))
        expected = self.tree("one")
        self.assertEqual(len(expected), 4)
        for folder in ("four", "pattern", "listed", "shards"):
            self.assertEqual(self.tree(folder), expected, folder)
        ordered = sorted(good, key=os.fsencode)
        self.assertEqual(seen, [set(ordered[i::3]) for i in range(3)])
        self.batch(0, *good, "--out-dir", "given", *options)
        self.assertEqual({os.path.join("art", name): content for name, content in expected.items()}, self.tree("given"))

    def test_patterns(self):
        for name in ("art/a.png", "art/ä.png", "art/.hidden.png", "art/x/b.png", "art/x/y/c.png", "art/x/y/odd*.png"):
            self.add(name, picture(1))
        os.symlink("x", self.path("art/link"))
        for pattern, names in (
            ("art/*.png", ["a", "ä"]),
            ("art/?.png", ["a", "ä"]),
            ("art/**/*.png", ["a", "ä", "x/b", "x/y/c", "x/y/odd*"]),
            ("art/**/y/*.png", ["x/y/c", "x/y/odd*"]),
            ("art/**", ["a", "ä", "link", "x/b", "x/y/c", "x/y/odd*"]),
            ("art/.*.png", [".hidden"]),
            ("art/x/y/odd*.png", ["art/x/y/odd*"]),
        ):
            with self.subTest(pattern):
                result = self.run_program("convert", pattern, "--out-dir", "out", "--report", "r.json", "--keep-going")
                entries = json.loads(self.read("r.json"))["files"]
                self.assertEqual(sorted(entry["output"] for entry in entries), sorted(f"out/{name}.zor" for name in names), result.stderr)
        self.refuse(1, r"art/\*.gif: names no file", "convert", "art/*.gif", "--out-dir", "out")

    def test_update(self):
        self.good_files()
        self.add("mask.png", picture(7))
        call = ("art", "--recursive", "--out-dir", "out", "--update", "--report", "report.json", "--quiet", "--copy-channel", "r=g:mask.png")

        def run(*more):
            self.batch(0, *call, *more)
            return sorted(name for name, status in self.statuses("report.json").items() if status == "converted")

        everything = sorted(self.statuses("report.json")) if run() else []
        self.assertEqual(len(everything), 4)
        before = self.tree("out")
        self.assertEqual(run(), [])
        os.utime(self.path("art/a.png"), ns=(1, 1))
        self.assertEqual(run(), ["art/a.png"])
        self.write("out/z.zor", b"spoilt")
        self.assertEqual(run(), ["art/z.png"])
        os.remove(self.path("out/z.zor"))
        self.assertEqual(run(), ["art/z.png"])
        self.write("mask.png", picture(8, 16))
        self.assertEqual(run(), everything)
        self.write("mask.png", picture(7, 16))
        self.assertEqual(run(), everything)
        self.assertEqual(self.tree("out"), before)
        self.assertEqual(run("--flip", "x"), everything)
        self.assertEqual(run("--flip", "x", "--jobs", "2"), [])

    def test_outputs_that_cannot_be(self):
        self.add("a.png", picture(1))
        self.add("a.ktx", b"")
        self.add("file", b"in the way")
        result = self.batch(1, "a.png", "--out-dir", "file/below")
        self.assertRegex(result.stderr, r"zortex: file/below/a.zor: its folder cannot be made: Not a directory")
        result = self.batch(1, "a.png", "a.ktx", "--out-dir", "out", "--keep-going")
        self.assertIn("its output a.zor is made from a.ktx already", result.stderr)
        self.batch(0, "a.png", "../" + os.path.basename(self.folder) + "/a.png", "--out-dir", "up/down", "--quiet")
        self.assertEqual(set(self.tree("up")), {"down/a.zor", f"down/{os.path.basename(self.folder)}/a.zor"})
        for arguments, pattern in (
            (("a.png", "--out-dir", "o", "--shard", "0/3"), "--shard: '0/3'"),
            (("a.png", "--out-dir", "o", "--shard", "4/3"), "--shard: '4/3'"),
            (("a.png", "--out-dir", "o", "--to", "jpg"), ".jpg: the output's extension"),
            (("a.png", "--out-dir", "o", "--format", "rgbz"), "--format: unknown"),
            (("a.png", "b.zor", "--update"), "--update: it needs --out-dir"),
            (("--out-dir", "o"), "convert: no input files"),
        ):
            with self.subTest(arguments):
                self.refuse(2, pattern, "convert", *arguments)

    def test_results_are_no_inputs(self):
        self.add("art/a.png", picture(1))
        before = self.read("art/a.png")
        for _ in range(2):
            self.batch(0, "art/**/*.png", "--out-dir", "art/out", "--to", "png", "--quiet")
            self.batch(0, "art", "--out-dir", "art", "--to", "ktx", "--quiet")
        self.assertEqual(set(self.tree("art")), {"a.png", "a.ktx", "out/a.png"})
        result = self.batch(1, "art/a.png", "--out-dir", ".", "--to", "png")
        self.assertIn("zortex: art/a.png: its result would replace it\n", result.stderr)
        self.assertEqual(self.read("art/a.png"), before)

    def test_little_room(self):
        """Few descriptors make the workers fewer; a report that cannot be written leaves the results."""
        for i in range(30):
            self.add(f"art/{i}.png", picture(i))
        command = ["sh", "-c", 'ulimit -n 24; exec "$0" "$@"', ZORTEX, "convert", "art", "--out-dir", "out", "--jobs", "100", "--quiet",
                   "--report", "art/0.png/report.json"]
        result = subprocess.run(command, cwd=self.folder, capture_output=True, text=True, timeout=120)
        self.assertEqual(result.returncode, 1, result.stderr)
        self.assertRegex(result.stderr, r"\Azortex: art/0.png/report.json: .*\nzortex: out: 30 converted of 30\n\Z")
        self.assertEqual(len(self.tree("out")), 30)

    def test_presets(self):
        self.add("opaque.png", picture(1))
        self.add("clear.png", picture(2, alpha=True))
        self.assertEqual({row["name"] for row in json.loads(self.succeed("presets", "--json"))}, {"albedo", "normal", "mask", "ui", "hdr"})
        self.batch(0, "*.png", "--preset", "albedo", "--quality", "0", "--out-dir", "out", "--report", "r.json", "--quiet")
        entries = {entry["input"]: entry for entry in json.loads(self.read("r.json"))["files"]}
        self.assertEqual(entries["opaque.png"]["format"], "etc2-rgb")
        self.assertEqual(entries["clear.png"]["format"], "etc2-rgba")
        self.assertEqual(entries["clear.png"]["mipLevels"], 5)
        # What a preset stands for can be typed too, and what is typed beside it wins.
        options = self.succeed("presets", "hdr").split()
        self.succeed("convert", "opaque.png", "typed.zor", *options, "--quiet")
        self.succeed("convert", "opaque.png", "preset.zor", "--preset", "hdr", "--quiet")
        self.assertEqual(self.read("typed.zor"), self.read("preset.zor"))
        self.succeed("convert", "clear.png", "own.zor", "--preset=albedo", "--format", "rgb565", "--mips", "2", "--quiet")
        header, _ = read_native(self.read("own.zor"))
        self.assertEqual((header["format"], header["levels"]), (layout("rgb", 5, 6, 5), 2))
        self.refuse(2, "--preset: 'shiny' is none of", "convert", "opaque.png", "x.zor", "--preset", "shiny")

    def slow_batch(self, name="out"):
        """A batch of two workers that takes seconds, and a wait until it knows of its first result: the third is made."""
        for i in range(24):
            if not os.path.exists(self.path(f"many/{i:02}.png")):
                self.add(f"many/{i:02}.png", picture(i, 128))
        process = subprocess.Popen([ZORTEX, "convert", "many", "--out-dir", name, "--format", "etc2-rgb", "--quality", "1", "--mips",
                                    "--update", "--jobs", "2"], cwd=self.folder, stderr=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
        while process.poll() is None and len(glob.glob(self.path(f"{name}/.zortex/made/[0-9][0-9].zor.json"))) < 3:
            time.sleep(0.01)
        self.assertIsNone(process.poll(), "the batch was over too soon to be stopped")
        return process

    def finish_and_compare(self, living=None):
        """The next run makes the rest, and all is as in a run that nobody stopped."""
        call = ("many", "--format", "etc2-rgb", "--quality", "1", "--mips", "--quiet")
        self.batch(0, *call, "--out-dir", "out", "--update", "--report", "report.json")
        self.assertIn("up to date", self.statuses("report.json").values())
        self.batch(0, *call, "--out-dir", "fresh")
        made = self.tree("out")
        self.assertEqual(made.pop(living, None) is not None, living is not None)
        self.assertEqual(made, self.tree("fresh"))

    def test_interrupted(self):
        for number, code in ((signal.SIGINT, 130), (signal.SIGTERM, 143)):
            with self.subTest(number):
                process = self.slow_batch("out" if code == 130 else "other")
                process.send_signal(number)
                _, messages = process.communicate(timeout=60)
                self.assertEqual(process.returncode, code)
                self.assertRegex(messages.splitlines()[-1], r"zortex: interrupted: [1-9]\d* converted, [1-9]\d* not run of 24")
        self.assertEqual([name for name in self.tree("out") if not name.endswith(".zor") or "zortex-tmp" in name], [])
        self.finish_and_compare()

    def test_killed(self):
        process = self.slow_batch()
        process.kill()
        process.communicate(timeout=60)
        # A file of a run that is gone, and one of a process that lives.
        machine = os.uname().nodename.replace(".", "-")
        self.add(f"out/00.{machine}.{process.pid}.zortex-tmp.zor", b"left")
        self.add(f"out/01.{machine}.{os.getpid()}.zortex-tmp.zor", b"in work")
        strays = [name for name in self.tree("out") if "zortex-tmp" not in name and not name.endswith(".zor")]
        self.assertEqual(strays, [])
        self.finish_and_compare(f"01.{machine}.{os.getpid()}.zortex-tmp.zor")

    def test_a_worker_that_dies(self):
        self.good_files()
        # Little address space: the large picture's worker runs out of memory, the others do not.
        big = b"".join((PNG_SIGNATURE, chunk(b"IHDR", struct.pack(">IIBBBBB", 30000, 30000, 8, RGBA, 0, 0, 0)),
                        chunk(b"IDAT", zlib.compress(bytes(30000 * 4 + 1))), chunk(b"IEND", b"")))
        self.add("art/big.png", big)
        command = ["sh", "-c", 'ulimit -v 600000; exec "$0" "$@"', ZORTEX, "convert", "art", "--recursive", "--out-dir", "out", "--keep-going",
                   "--report", "report.json"]
        result = subprocess.run(command, cwd=self.folder, capture_output=True, text=True, timeout=120)
        if "AddressSanitizer" in result.stderr:
            self.skipTest("the sanitizer needs more address space than the limit leaves")
        self.assertEqual(result.returncode, 1, result.stderr)
        statuses = self.statuses("report.json")
        self.assertEqual([name for name, status in statuses.items() if status != "converted"], ["art/big.png"], result.stderr)

    def test_collect(self):
        good = self.good_files()
        self.add("art/bad.png", b"bad")
        names = sorted(good + ["art/bad.png"], key=os.fsencode)
        self.write("list", "\n".join(names).encode())
        # The second of three shares never ran.
        for i in (1, 3):
            self.run_program("convert", "--list", "list", "--out-dir", "out", "--shard", f"{i}/3", "--keep-going", "--report", f"r/{i}.json")
        result = self.run_program("collect", "r", "--list", "list", "--failed", "failed", "--report", "all.json")
        missing = names[1::3]
        self.assertEqual(result.returncode, 1)
        self.assertEqual(self.read("failed").decode().splitlines(), sorted(set(missing) | {"art/bad.png"}, key=os.fsencode))
        self.add("art/bad.png", picture(3))
        self.batch(0, "--list", "failed", "--out-dir", "out", "--report", "r/again.json", "--quiet")
        text = self.succeed("collect", "r", "--list", "list", "--failed", "failed")
        self.assertEqual((text, self.read("failed")), ("5 converted of 5\n", b""))
        self.refuse(1, "list: is no report of a batch", "collect", "list")


if __name__ == "__main__":
    main()
