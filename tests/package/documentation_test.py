#!/usr/bin/env python3
"""Holds the code of the documentation against the examples: what a reader copies was compiled.

BRINDLE_SOURCE names the sources.
"""

import os
import pathlib
import re
import unittest
import xml.etree.ElementTree

SOURCE = pathlib.Path(os.environ["BRINDLE_SOURCE"])
PAGES = ["README.md", "docs/hosting.md", "docs/data-model.md", "docs/options.md",
         "docs/python.md"]
BLOCK = re.compile(r"^```(cpp|cmake|c|csharp)\n(.*?)^```$", re.MULTILINE | re.DOTALL)


def significant_lines(text):
    return [line.strip() for line in text.splitlines() if line.strip()]


def contains(lines, part):
    return any(lines[start:start + len(part)] == part for start in range(len(lines)))


class DocumentationTest(unittest.TestCase):
    def test_code_blocks_are_excerpts_of_the_examples(self):
        folder = SOURCE / "examples"
        examples = {"cpp": folder.glob("cpp/*.cpp"), "cmake": folder.glob("*/CMakeLists.txt"),
                    "c": folder.glob("c/*.c"), "csharp": folder.glob("managed/*.cs")}
        examples = {language: [significant_lines(path.read_text()) for path in paths]
                    for language, paths in examples.items()}
        count = 0
        for page in PAGES:
            for language, block in BLOCK.findall((SOURCE / page).read_text()):
                count += 1
                with self.subTest(page=page, block=block):
                    part = significant_lines(block)
                    self.assertTrue(any(contains(lines, part) for lines in examples[language]))
        self.assertGreater(count, 5)

    def test_all_packages_have_one_version(self):
        wanted = re.search(r"project\(brindle VERSION ([\d.]+)", (SOURCE / "CMakeLists.txt").read_text()).group(1)
        for file, pattern in (("managed/Brindle/Brindle.csproj", r"<Version>(.*)</Version>"),
                              ("python/brindle/_version.py", r'__version__ = "(.*)"')):
            self.assertEqual(re.findall(pattern, (SOURCE / file).read_text()), [wanted], file)

    def test_the_project_of_the_managed_library_says_what_a_package_needs(self):
        folder = SOURCE / "managed" / "Brindle"
        project = xml.etree.ElementTree.parse(folder / "Brindle.csproj").getroot()
        self.assertEqual((project.tag, project.get("Sdk")), ("Project", "Microsoft.NET.Sdk"))
        values = {element.tag: element.text for element in project.iterfind("PropertyGroup/*")}
        for name in ("PackageId", "Version", "Authors", "Description", "TargetFramework"):
            self.assertTrue(values.get(name), name)
        packed = {}
        for item in project.iterfind("ItemGroup/*"):
            included = item.get("Include")
            self.assertEqual(item.get("Pack"), "true", included)
            if "*" not in included:
                self.assertTrue((folder / included).is_file(), included)
                packed[pathlib.Path(included).name] = item.get("PackagePath")
        for name in ("PackageLicenseFile", "PackageReadmeFile"):
            self.assertEqual(packed.get(values[name]), "/", name)
        # The assembly of the library must not have the name of the native one.
        self.assertNotEqual(values["AssemblyName"].lower(), "brindle")
        # The native libraries: what the code loads, under the names of the builds, in the packed folder.
        loaded = re.search(r'Library = "(.*)"', (folder / "Native.cs").read_text()).group(1)
        page = (SOURCE / "docs" / "hosting.md").read_text()
        native = dict(re.findall(r"`runtimes/([\w-]+)/native/(\S+)`", page))
        self.assertEqual(native, {"linux-x64": f"lib{loaded}.so", "win-x64": f"{loaded}.dll",
                                  "win-x86": f"{loaded}.dll"})

    def test_links_lead_to_files(self):
        pages = ["CONTRIBUTING.md", "SECURITY.md", *(str(path.relative_to(SOURCE)) for path in SOURCE.glob("docs/*.md"))]
        for page in dict.fromkeys([*PAGES, *pages]):
            path = SOURCE / page
            for target in re.findall(r"\]\(([^)#:]+)\)", path.read_text()):
                with self.subTest(page=page, target=target):
                    self.assertTrue((path.parent / target).exists())


if __name__ == "__main__":
    unittest.main()
