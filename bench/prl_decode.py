#!/usr/bin/env python3
"""A plain script decoder of a binary roaming list, printing the same text as `tarn-cli text`.

It is the yardstick of the whole-process comparison (bench/compare_text.sh): the straightforward
way to do the job in a script, a bit reader over the file's bytes and one print per record. It
knows the records a large carrier list is made of: the channel-list acquisition records (types 3,
6, 8 and 9) and the IS-2000 system record (with its 1x-MCC form), in both framings, with or
without the 5-byte prefix. Anything else ends it with a message and exit status 1.
"""

import sys

VERSION_NAMES = {1: "IS-683A", 2: "IS-683B", 3: "IS-683C", 4: "IS-683D", 5: "IS-683E"}
CHANNEL_LIST_TYPES = {3: 1, 6: 1, 8: 2, 9: 2}  # type -> the first version that has it
MCC_SIDS = (15904, 15905)


class Unsupported(Exception):
    pass


class BitReader:
    def __init__(self, data, start):
        self.data = data
        self.bit = start * 8

    def read(self, width):
        first = self.bit >> 3
        last = (self.bit + width + 7) >> 3
        if last > len(self.data):
            raise Unsupported("the records run past the end of the list")
        chunk = int.from_bytes(self.data[first:last], "big")
        shift = last * 8 - self.bit - width
        self.bit += width
        return (chunk >> shift) & ((1 << width) - 1)

    def align(self):
        self.bit = (self.bit + 7) & ~7


def crc16(data):
    reg = 0xFFFF
    for byte in data:
        reg ^= byte << 8
        for _ in range(8):
            reg = ((reg << 1) ^ 0x1021) if reg & 0x8000 else reg << 1
            reg &= 0xFFFF
    return reg ^ 0xFFFF


def list_bounds(data):
    """(start, size) of the list inside the file, or None when neither framing checks out."""
    stored = int.from_bytes(data[-2:], "big") if len(data) > 2 else None
    if stored is None:
        return None
    if len(data) > 7 and data[0] in (2, 3):
        bits = int.from_bytes(data[1:5], "little")
        size = ((bits + 7) // 8) & 0xFFFF
        if size == len(data) - 5 and size >= 2 and crc16(data[5:5 + size - 2]) == stored:
            return 5, size
    size = int.from_bytes(data[:2], "big")
    if size == len(data) and crc16(data[:size - 2]) == stored:
        return 0, size
    return None


def read_acq(reader, version):
    if version >= 3:
        code = reader.read(8)
        reader.read(8)  # length in octets
    else:
        code = reader.read(4)
    if CHANNEL_LIST_TYPES.get(code, 99) > version:
        raise Unsupported("acquisition record type %d" % code)
    count = reader.read(5)
    fields = [reader.read(11) for _ in range(count)]
    if version >= 3:
        used = 5 + 11 * count
        reader.read((8 - used % 8) % 8)
    return code, [str(c) for c in fields]


def ids_text(sid, nid_incl, nid):
    if sid in MCC_SIDS:
        mcc = (512 if sid == 15905 else 0) | (nid >> 7)
        imsi = nid & 0x7F
        return 14, [str(mcc if mcc <= 999 else 0), str(imsi if imsi <= 99 else 0)]
    return 0, [str(sid), str(nid), str(nid_incl)]


def read_nid(reader, nid_incl):
    if nid_incl == 1:
        return reader.read(16)
    return 0 if nid_incl == 2 else 65535


def read_sys(reader, version):
    yes_no = ("No", "Yes")
    if version < 3:
        sid = reader.read(15)
        nid_incl = reader.read(2)
        nid = read_nid(reader, nid_incl)
        pref = reader.read(1)
        geo = reader.read(1)
        pri = reader.read(1) if pref else 0
        acq = reader.read(9)
        roam = reader.read(8) if pref else 0
        code, own = ids_text(sid, nid_incl, nid)
        common = [("Neg", "Pref")[pref], ("New", "Same")[geo], ("Same", "More")[pri],
                  str(acq), str(roam)]
        return code, common + own
    start = reader.bit
    reader.read(5)  # length in octets
    code = reader.read(4)
    if code != 0:
        raise Unsupported("system record type %d" % code)
    pref = reader.read(1)
    geo = reader.read(1)
    pri = reader.read(1)
    acq = reader.read(9)
    reader.read(1)  # reserved
    nid_incl = reader.read(2)
    sid = reader.read(15)
    nid = read_nid(reader, nid_incl)
    roam = reader.read(8) if pref else 0
    assn = reader.read(1)
    tag = pn = data = 0
    if assn:
        tag = reader.read(8)
        pn = reader.read(1)
        data = reader.read(1)
    used = reader.bit - start
    reader.read((8 - used % 8) % 8)
    code, own = ids_text(sid, nid_incl, nid)
    common = [("Neg", "Pref")[pref], ("New", "Same")[geo], ("Same", "More")[pri], str(acq),
              str(roam), yes_no[assn], str(tag), yes_no[pn], yes_no[data]]
    return code, common + own


def decode(data, start, size, version):
    reader = BitReader(data, start)
    reader.read(16)  # list size
    header = {"id": reader.read(16)}
    if version >= 3:
        reader.read(8)  # protocol revision
    header["prefOnly"] = reader.read(1)
    header["defRoamInd"] = reader.read(8)
    acq_count = reader.read(9)
    if version >= 3:
        reader.read(9)  # common subnet records
    sys_count = reader.read(14)
    if version >= 3:
        reader.read(7)  # reserved
    acq = [read_acq(reader, version) for _ in range(acq_count)]
    sys_records = [read_sys(reader, version) for _ in range(sys_count)]
    end = start + size - 2
    if (reader.bit + 7) // 8 != end:
        raise Unsupported("the records do not end where the list ends")
    return header, acq, sys_records


def render(version, header, acq, sys_records):
    out = ["\r\n\t\t=============== ROAMING LIST ===============\r\n\r\n",
           "\tRoaming List Type:\t\t%s\r\n" % VERSION_NAMES[version],
           "\tPreferred Only:\t\t%s\r\n" % ("TRUE" if header["prefOnly"] else "FALSE"),
           "\tPreferred List ID:\t\t%d\r\n" % header["id"],
           "\tDefault Roaming Indicator:\t%d\r\n" % header["defRoamInd"],
           "\r\n\t\t*********** Acquisition Table ***********\r\n\r\n",
           "\tINDEX\tACQ TYPE\tCH1\tCH2\tCH3\tCH4\tCH5\tCH6\tCH7 - - CH31\r\n"]
    for index, (code, fields) in enumerate(acq):
        out.append("\t%d\t%d\t%s\r\n" % (index, code, "".join(f + "\t" for f in fields)))
    out.append("\r\n\t\t*********** System Table ***********\r\n\r\n")
    out.append("INDEX\tSYS TYPE\tNEG/PREF\tGEO\tPRI\tACQ IND\tROAM IND\tASSN INC\tASSN TAG\t"
               "PN ASSN\tDATA ASSN\tSID, NID / MCC, IMSI_11_12 / SUBNETID / PLMN TYPE, PLMN, "
               "LAC\r\n")
    for index, (code, fields) in enumerate(sys_records):
        out.append("\t%d\t%d\t%s\r\n" % (index, code, "".join(f + "\t" for f in fields)))
    return "".join(out)


def main():
    if len(sys.argv) != 2:
        print("usage: prl_decode.py LIST", file=sys.stderr)
        return 2
    with open(sys.argv[1], "rb") as f:
        data = f.read()
    bounds = list_bounds(data)
    if bounds is None:
        print("The size or CRC of the list does not match.", file=sys.stderr)
        return 1
    start, size = bounds
    error = "no version reads the list"
    # As the product does: the first version that reads the whole list wins.
    for version in range(1, 6):
        try:
            header, acq, sys_records = decode(data, start, size, version)
        except Unsupported as e:
            error = str(e)
            continue
        sys.stdout.buffer.write(render(version, header, acq, sys_records).encode("ascii"))
        return 0
    print(error, file=sys.stderr)
    return 1


if __name__ == "__main__":
    sys.exit(main())
