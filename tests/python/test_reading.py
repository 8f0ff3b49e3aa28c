"""Reading: what may be given, how it fails, what a running read means for another."""

import concurrent.futures
import gc
import os
import threading
import weakref

import brindle
import pytest

NAME = "arm-c-dwarf4-O0.elf"


def test_a_content_is_read_like_its_path(images):
    path = images / NAME
    content = path.read_bytes()
    expected = brindle.read(path)
    for source in (str(path), content, bytearray(content), memoryview(content)):
        with brindle.read(source, name="unpacked.elf") as image:
            assert len(image.variables) == len(expected.variables) > 20
            assert image.sections == expected.sections
            assert image.initial_bytes(image["motors"].address, 4) is not None
    assert image.path == "unpacked.elf"


def test_a_failed_read_has_the_readers_text_and_what_came_before(images, tmp_path):
    missing = tmp_path / "fehlt-ü.elf"
    with pytest.raises(brindle.ReadError, match="Open"):
        brindle.read(missing)
    broken = tmp_path / "broken.elf"
    broken.write_bytes((images / "arm-c-dwarf4-O2-nosymtab.elf").read_bytes())
    with pytest.raises(brindle.ReadError, match="strtab") as failure:
        brindle.read(broken)
    assert len(failure.value.image.variables) > 10


def test_the_error_names_file_and_reason(images, tmp_path):
    content = (images / NAME).read_bytes()
    file = tmp_path / "Zünd.elf"
    for wrong, why in ((b"", "The file is empty"), (b"some text", "neither ELF nor"),
                       (b":020000040800F2\n", "Intel HEX"), (b"S00600004844521B\n", "S-records"),
                       (b"!<arch>\n", "archive"), (b"/begin PROJECT p", "A2L"),
                       (content[:1000], "truncated"), (content[:20], "truncated")):
        file.write_bytes(wrong)
        for source, name in ((file, str(file)), (wrong, "")):
            with pytest.raises(brindle.ReadError) as failure:
                brindle.read(source)
            text = str(failure.value)
            assert text.startswith(f"{name}: " if name else "") and why in text, text
            assert "corrupt" not in text
    with pytest.raises(brindle.ReadError, match="Is a directory"):
        brindle.read(tmp_path)
    with pytest.raises(brindle.ReadError, match="not a Windows image, or truncated"):
        brindle.read(images / NAME, container="pe")
    with pytest.raises(brindle.ReadError, match="not a Windows image, or truncated"):
        brindle.read((images / "x86_64-c-dwarf4-O0.exe").read_bytes()[:1000])
    os.mkfifo(tmp_path / "pipe")
    with pytest.raises(brindle.ReadError, match="pipe"):
        brindle.read(tmp_path / "pipe")


def test_options_hold_for_one_read(images):
    modern = images / "full" / "arm-c-O0.elf"
    for manner in ({}, {"options": {"mIsFullReading": False}}, {"full": True}):
        if manner.get("full"):
            assert list(brindle.read(modern, **manner).leaves("motors*.gain"))
        else:
            with pytest.raises(brindle.ReadError, match="DWARF"):
                brindle.read(modern, **manner)
    for options in ({"mNothing": 1}, {"mIsFullReading": "much"}):
        with pytest.raises(brindle.OptionError, match=next(iter(options))):
            brindle.read(modern, options=options)
    with pytest.raises(ValueError, match="container"):
        brindle.read(modern, container="zip")


def test_remarks_tell_what_was_passed_over(images):
    with brindle.read(images / "full" / "arm-c-split.elf", full=True) as image:
        remark, = image.remarks
        assert "-gsplit-dwarf" in remark
    assert brindle.read(images / NAME, full=True).remarks == ()


def test_all_types_are_read_where_they_are_wanted(images):
    some, every = (len(list(brindle.read(images / NAME, all_types=flag).types))
                   for flag in (False, True))
    assert 0 < some < every


def test_progress_is_told_and_may_end_the_read(images):
    told = []
    brindle.read(images / NAME, progress=lambda phase, share: told.append((phase, share)))
    assert list(dict(told)) == ["Reading...", "Post-Processing..."]
    assert all(0 <= share <= 1 for _, share in told)

    def interrupt(phase, share):
        raise KeyboardInterrupt

    with pytest.raises(KeyboardInterrupt):
        brindle.read(images / NAME, progress=interrupt)
    assert len(brindle.read(images / NAME).variables) > 20


def test_a_second_read_is_refused_or_waits(images):
    path = images / NAME
    results = []

    def second(wait):
        try:
            results.append(len(brindle.read(path, wait=wait).variables))
        except brindle.BusyError as error:
            results.append(str(error))

    waiting = threading.Thread(target=second, args=[True])

    def meanwhile(phase, share):
        if not results:
            refused = threading.Thread(target=second, args=[False])
            refused.start()
            refused.join()
            waiting.start()

    image = brindle.read(path, progress=meanwhile)
    waiting.join()
    assert "wait=True" in results[0]
    assert results[1:] == [len(image.variables)]


def test_threads_that_read_at_once_get_what_they_asked_for(images):
    modern = images / "full" / "x86_64-c-O0.elf"
    requests = [(images / NAME, False), (images / NAME, True), (modern, True)]

    def read(request, wait=True):
        path, full = request
        try:
            with brindle.read(path, full=full, wait=wait) as image:
                return [(variable.path, variable.address) for variable in image.variables]
        except brindle.BusyError:
            return None

    alone = [read(request) for request in requests]
    with concurrent.futures.ThreadPoolExecutor(6) as pool:
        waiting = list(pool.map(read, requests * 6))
        told = list(pool.map(lambda request: read(request, wait=False), requests * 6))
    assert waiting == alone * 6
    assert all(result is None or result == expected for result, expected in zip(told, alone * 6))
    assert any(told), "one of them reads while the others are told"


def test_a_closed_image_says_so_and_an_unused_one_goes(images):
    image = brindle.read(images / NAME)
    place, leaves = image["motors"], image.leaves()
    with image:
        pass
    for question in (lambda: image["motors"], lambda: place.type.size, lambda: next(iter(leaves)),
                     lambda: image.variables["motors"]):
        with pytest.raises(brindle.ClosedError):
            question()

    image = brindle.read(images / NAME)
    model = weakref.ref(image._model)
    kept = image["motors"].type
    del image
    assert kept.size > 0, "what is held keeps its model"
    del kept
    gc.collect()
    assert model() is None
