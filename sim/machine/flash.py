"""The board's SPI NOR flash and its EEPROM, as files: where the partitions lie, what they hold when
the unit leaves the factory, and the device tree that tells the kernel about them.

    flash.py tree <BOARD.dts >UNIT.dts      the board's device tree, made the unit's
"""

import math
import os
import re
import struct
import sys
import zlib

HERE = os.path.dirname(os.path.abspath(__file__))

ERASED = b"\xff"
SIZE = 0x200000  # of the one chip that qemu solders to this board, an SST25VF016B
ERASE_BLOCK = 0x1000
# Name, size; /dev/mtd0, /dev/mtd1 and so on. The upgrade writes 1 to 3, 3 holds the settings.
PARTITIONS = [("boot", 0x40000), ("kernel", 0x40000), ("rootfs", 0x40000), ("var", 0x80000),
              ("env", 0x10000)]
ENV_SIZE = 0x4000  # as etc/fw_env.config has it


def extent(number):
    """Where the partition begins and ends in the flash."""
    begin = sum(size for _, size in PARTITIONS[:number])
    return begin, begin + PARTITIONS[number][1]


def partition(flash, number):
    begin, end = extent(number)
    return flash[begin:end]


def environment():
    """The bootloader environment of a new unit: its sum, the variables of the simulated one."""
    with open(os.path.join(HERE, "../rootfs/etc/u-boot-initial-env"), "rb") as file:
        variables = file.read().replace(b"\n", b"\0") + b"ver=1\0"
    data = (variables + b"\0").ljust(ENV_SIZE - 4, ERASED)
    return struct.pack("<I", zlib.crc32(data)) + data


def factory():
    """The flash of a new unit: erased but for the environment. The first start finds no settings
    and begins with the factory's."""
    flash = bytearray(ERASED * SIZE)
    begin, _ = extent(len(PARTITIONS) - 1)
    flash[begin:begin + ENV_SIZE] = environment()
    return bytes(flash)


QUANTITIES = {  # name: first register, counts of the register pair
    "temperature": (96, lambda value: value * 256),
    "supply_voltage": (98, lambda value: value * 10000),
    "tx_bias": (100, lambda value: value * 1000),
    "tx_power": (102, lambda value: 10000 * math.pow(10, value / 10)),
    "rx_power": (104, lambda value: 10000 * math.pow(10, value / 10)),
}


def module_registers(path):
    """The 256 registers of the optical module that the simulated unit's register file describes."""
    registers = bytearray(256)
    with open(path, encoding="utf-8") as file:
        for line in file:
            words = line.partition("#")[0].split()
            if not words:
                continue
            if words[0] == "register":
                first, *values = (int(word, 0) for word in words[1:])
                registers[first:first + len(values)] = bytes(values)
            elif words[0] in QUANTITIES:
                first, count = QUANTITIES[words[0]]
                pair = math.floor(count(float(words[1])) + 0.5) & 0xFFFF
                registers[first:first + 2] = struct.pack(">H", pair)
            else:
                raise ValueError(f"{path}: an EEPROM cannot do this: {line.strip()}")
    return bytes(registers)


def unit_tree(text):
    """No device keeps its DMA: the firmware of this board's DMA engine is not free, and without it
    SPI controller and serial lines would wait for ever. The flash gets partitions; the devices of
    PON driver and traffic manager get places in /sys, over which the start mounts their files."""
    text = re.sub(r"\n\s*dma(s|-names) = [^;]*;", "", text)
    end = text.index("};", text.index("sst,sst25vf016b"))
    nodes = "".join(
        f'partition@{extent(n)[0]:x} {{ label = "{name}"; reg = <{extent(n)[0]} {size}>; }};\n'
        for n, (name, size) in enumerate(PARTITIONS))
    partitions = ('partitions { compatible = "fixed-partitions"; #address-cells = <1>; '
                  "#size-cells = <1>;\n" + nodes + "};\n")
    text = text[:end] + partitions + text[end:]
    stand_ins = '\tepon { compatible = "onu,epon"; };\n\ttpm { compatible = "onu,tpm"; };\n'
    last = text.rindex("};")
    return text[:last] + stand_ins + text[last:]


if __name__ == "__main__":
    if sys.argv[1:] != ["tree"]:
        sys.exit(__doc__)
    sys.stdout.write(unit_tree(sys.stdin.read()))
