"""What the program tells of its own command line: the manual page, the documentation, the completions of shells."""

import shutil

from zortex_testing import *


class Generate(ProgramTest):
    def setUp(self):
        super().setUp()
        self.write("a.png", make_png(8, 8, RGBA, 8, list(range(256))))

    def commands(self):
        text = self.succeed("--help").split("Subcommands:")[1]
        return [line.split()[0] for line in text.split("\n\n")[0].splitlines() if line.startswith("  ")]

    def options(self, command):
        """The long options that --help of a command lists."""
        text = self.succeed(command, "--help")
        return {word.rstrip(",") for line in text.splitlines() if line.startswith("  -") for word in line.split()[0].split(",")
                if word.startswith("--")}

    def complete(self, *words):
        """What bash offers for the last word."""
        self.succeed("generate", "bash", "zortex.bash")
        line = " ".join(f"'{word}'" for word in ("zortex", *words))
        script = f'. ./zortex.bash; COMP_WORDS=({line}); COMP_CWORD={len(words)}; _zortex; echo "${{COMPREPLY[*]}}"'
        result = subprocess.run(["bash", "-uc", script], cwd=self.folder, capture_output=True, text=True, timeout=60)
        self.assertEqual((result.returncode, result.stderr), (0, ""), words)
        return result.stdout.split()

    def test_every_command_and_option_is_told(self):
        commands = self.commands()
        self.assertLessEqual({"convert", "info", "formats", "diff", "view"}, set(commands))
        manual = self.succeed("generate", "man").replace("\\-", "-")
        page = self.succeed("generate", "markdown")
        zsh = self.succeed("generate", "zsh")
        self.assertEqual(self.complete("")[:len(commands)], commands)
        for command in commands:
            options = self.options(command)
            self.assertIn("--help", options)
            self.assertLessEqual(options, set(self.complete(command, "-")), command)
            for text in (manual, page, zsh):
                self.assertEqual([name for name in sorted(options) if name not in text], [], command)

    def test_bash_completes(self):
        for words, offers in (
            (("con",), ["convert"]),
            (("convert", "--qual"), ["--quality"]),
            (("convert", "--space", ""), ["linear", "srgb"]),
            (("convert", "a.png", "b.zor", "--format", "etc2-rgb-"), ["etc2-rgb-a1"]),
            (("diff", "--mo"), ["--mode"]),
            (("info", "a"), []),  # left to file names
        ):
            with self.subTest(words):
                self.assertEqual(self.complete(*words), offers)

    def test_offered_words_are_taken(self):
        for option in ("--format", "--type", "--space", "--input-space", "--quality", "--filter", "--flip", "--rotate", "--mip-filter",
                       "--legacy"):
            words = self.complete("convert", option, "")
            self.assertGreater(len(words), 1, option)
            for word in words:
                result = self.run_program("convert", "a.png", "b.zor", option, word)
                # A channel type may not suit the picture, but none of the words is unknown.
                self.assertNotRegex(result.stderr, f"unknown|none of|'{word}'", option)
        for option in ("--alpha-format", "--preset", "--to"):
            for word in self.complete("convert", option, ""):
                if word == "astc":
                    continue  # takes its own formats only
                self.succeed("convert", "a.png", "--out-dir", "out", "--quiet", option, word, *(("--format", "rgba8888") if option[2] == "a" else ()))
        for word in self.complete("diff", "--mode", ""):
            self.succeed("diff", "a.png", "a.png", "--image", "d.png", "--mode", word)

    def test_the_manual_page_is_without_fault(self):
        groff = shutil.which("groff")
        if not groff:
            self.skipTest("groff is not installed")
        self.succeed("generate", "man", "zortex.1")
        result = subprocess.run([groff, "-man", "-Tascii", "-ww", "zortex.1"], cwd=self.folder, capture_output=True, text=True, timeout=60)
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        self.assertIn("--copy-channel", result.stdout)

    def test_zsh_reads_its_completion(self):
        zsh = shutil.which("zsh")
        if not zsh:
            self.skipTest("zsh is not installed")
        self.succeed("generate", "zsh", "_zortex")
        result = subprocess.run([zsh, "-n", "_zortex"], cwd=self.folder, capture_output=True, text=True, timeout=60)
        self.assertEqual((result.returncode, result.stderr), (0, ""))

    def test_refusals(self):
        self.refuse(2, "KIND: 'html' is none of", "generate", "html")
        self.refuse(1, ".*missing/zortex.1", "generate", "man", "missing/zortex.1")


if __name__ == "__main__":
    main()
