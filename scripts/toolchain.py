"""What a build folder was configured for, as scripts that run its programs need to know it."""
import pathlib
import re


def processor(build):
    """What runs the programs of a build (nothing, or qemu), and a C compiler for it."""
    cache = (build / 'CMakeCache.txt').read_text()
    toolchain = re.search(r'CMAKE_TOOLCHAIN_FILE:\w+=(.*)', cache)
    if not toolchain:
        return [], ['cc', *re.search(r'CMAKE_C_FLAGS:\w+=(.*)', cache).group(1).split()]
    names = dict(re.findall(r'set\((triplet|qemu) (\S+)\)', pathlib.Path(toolchain.group(1)).read_text()))
    return [f"qemu-{names['qemu']}", '-L', f"/usr/{names['triplet']}"], ['clang', f"--target={names['triplet']}"]
