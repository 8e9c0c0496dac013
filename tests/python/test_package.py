"""What the package promises to tools: versions, types, documentation."""

import ast
import inspect
import subprocess
import sys
import unittest
from pathlib import Path

import velscrollingcapture as vel
from velscrollingcapture import _core

SOURCE = Path(__file__).resolve().parents[2]
PACKAGE = Path(vel.__file__).parent


class Package(unittest.TestCase):
    def test_pip_takes_the_same_version(self):
        run = subprocess.run([sys.executable, "setup.py", "--version"], cwd=SOURCE, text=True, check=True,
                             capture_output=True)
        self.assertEqual(run.stdout.strip().splitlines()[-1], vel.__version__)

    def test_types_are_marked_and_cover_the_compiled_module(self):
        self.assertTrue((PACKAGE / "py.typed").exists())
        tree = ast.parse((PACKAGE / "_core.pyi").read_text())
        typed = {}
        for node in tree.body:
            if isinstance(node, ast.ClassDef):
                typed[node.name] = {member.name for member in node.body if isinstance(member, ast.FunctionDef)}
            elif isinstance(node, ast.FunctionDef):
                typed[node.name] = None
        compiled = {name for name in vars(_core) if not name.startswith("_")}
        self.assertEqual(set(typed), compiled)
        for name, members in typed.items():
            if members:
                public = {member for member in vars(getattr(_core, name)) if not member.startswith("_")}
                self.assertEqual({member for member in members if member != "__init__"}, public, name)

    def test_everything_public_is_documented_and_typed(self):
        for name in vel.__all__:
            thing = getattr(vel, name)
            if not callable(thing):
                continue
            self.assertTrue(inspect.getdoc(thing), name)
            for member, function in inspect.getmembers(thing, inspect.isfunction):
                if not member.startswith("_"):
                    self.assertTrue(inspect.getdoc(function), f"{name}.{member}")
                    self.assertIn("return", function.__annotations__, f"{name}.{member}")


if __name__ == "__main__":
    unittest.main()
