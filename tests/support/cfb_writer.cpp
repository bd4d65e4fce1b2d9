#include "tests/support/cfb_writer.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace tneftest {

namespace {

constexpr uint32_t kEnd = 0xFFFFFFFE;
constexpr uint32_t kFree = 0xFFFFFFFF;
constexpr uint32_t kFatMark = 0xFFFFFFFD;
constexpr uint32_t kDifatMark = 0xFFFFFFFC;
constexpr uint32_t kNoEntry = 0xFFFFFFFF;
constexpr uint32_t kCutoff = 4096;
constexpr uint32_t kMini = 64;
constexpr uint32_t kHeaderDifat = 109;

struct Chain {
    std::vector<uint32_t> sectors;
    uint32_t start = kEnd;
};

struct Item {
    const CfbEntryLayout* plan = nullptr;
    Bytes name16;
    bool mini = false;
    Chain chain;
    uint32_t left = kNoEntry;
    uint32_t right = kNoEntry;
};

uint32_t unitsFor(size_t bytes, uint32_t unit) {
    return static_cast<uint32_t>((bytes + unit - 1) / unit);
}

void link(std::vector<uint32_t>& table, Chain& chain) {
    const auto& s = chain.sectors;
    for (size_t k = 0; k < s.size(); ++k) table[s[k]] = k + 1 < s.size() ? s[k + 1] : kEnd;
    chain.start = s.empty() ? kEnd : s.front();
}

void breakChain(std::vector<uint32_t>& table, Chain& chain, CfbBreak kind, uint32_t outside) {
    const auto& s = chain.sectors;
    if (s.empty() || (kind == CfbBreak::kEndEarly && s.size() < 2))
        throw std::invalid_argument("chain too short for this damage");
    switch (kind) {
        case CfbBreak::kLoop: table[s.back()] = s.front(); break;
        case CfbBreak::kOutOfFile:
            if (s.size() >= 2) table[s[0]] = outside;
            else chain.start = outside;
            break;
        case CfbBreak::kEndEarly: table[s[0]] = kEnd; break;
    }
}

// Names order by length, then by their upper-case units.
bool nameBefore(const Bytes& a, const Bytes& b) {
    if (a.size() != b.size()) return a.size() < b.size();
    for (size_t i = 0; i < a.size(); i += 2) {
        auto unit = [](const Bytes& n, size_t at) {
            uint32_t u = n[at] | (n[at + 1] << 8);
            return u >= 'a' && u <= 'z' ? u - 32 : u;
        };
        if (unit(a, i) != unit(b, i)) return unit(a, i) < unit(b, i);
    }
    return false;
}

// A balanced tree over ids[lo, hi): all-black nodes keep it a valid tree.
uint32_t buildTree(std::vector<Item>& items, const std::vector<uint32_t>& ids, size_t lo, size_t hi) {
    if (lo >= hi) return kNoEntry;
    size_t mid = (lo + hi) / 2;
    Item& node = items[ids[mid] - 1];
    node.left = buildTree(items, ids, lo, mid);
    node.right = buildTree(items, ids, mid + 1, hi);
    return ids[mid];
}

void putAt(uint8_t* p, uint64_t value, int width) {
    for (int i = 0; i < width; ++i) p[i] = static_cast<uint8_t>(value >> (8 * i));
}

void writeEntry(uint8_t* p, const Bytes& name16, uint8_t type, uint32_t left, uint32_t right,
                uint32_t child, uint32_t start, uint64_t size) {
    std::memcpy(p, name16.data(), std::min<size_t>(name16.size(), 62));
    putAt(p + 0x40, name16.empty() ? 0 : name16.size() + 2, 2);
    p[0x42] = type;
    p[0x43] = 1;  // black
    putAt(p + 0x44, left, 4);
    putAt(p + 0x48, right, 4);
    putAt(p + 0x4C, child, 4);
    putAt(p + 0x74, start, 4);
    putAt(p + 0x78, size, 8);
}


void putText(Bytes& out, const std::string& text, bool terminated = true) {
    out.insert(out.end(), text.begin(), text.end());
    if (terminated) out.push_back(0);
}

int32_t here(const Bytes& out) { return static_cast<int32_t>(out.size()); }

}  // namespace

Bytes buildCfb(const std::vector<CfbEntryLayout>& entries, const CfbOptions& options) {
    if (options.version != 3 && options.version != 4)
        throw std::invalid_argument("version must be 3 or 4");
    const uint32_t ss = options.version == 3 ? 512 : 4096;
    const uint32_t per = ss / 4;

    // Streams below the cutoff go to the mini stream, each a run of mini sectors.
    std::vector<Item> items;
    std::vector<uint32_t> miniFat;
    Bytes miniBytes;
    for (const CfbEntryLayout& plan : entries) {
        Item item;
        item.plan = &plan;
        item.name16 = utf16(plan.name);
        item.mini = !plan.storage && plan.data.size() < kCutoff;
        if (item.mini) {
            uint32_t count = unitsFor(plan.data.size(), kMini);
            for (uint32_t k = 0; k < count; ++k) {
                item.chain.sectors.push_back(static_cast<uint32_t>(miniFat.size()));
                miniFat.push_back(0);
            }
            link(miniFat, item.chain);
            miniBytes.insert(miniBytes.end(), plan.data.begin(), plan.data.end());
            miniBytes.resize(miniFat.size() * kMini, 0);
        }
        items.push_back(std::move(item));
    }

    // Regular sectors: the FAT, the DIFAT, then the other chains.
    Chain directory, miniFatChain, container;
    uint32_t directoryCount = unitsFor((items.size() + 1) * 128, ss);
    uint32_t miniFatCount = unitsFor(miniFat.size() * 4, ss);
    uint32_t containerCount = unitsFor(miniBytes.size(), ss);
    uint32_t others = directoryCount + miniFatCount + containerCount;
    std::vector<uint32_t> remaining;
    for (const Item& item : items) {
        uint32_t count = item.mini || item.plan->storage ? 0 : unitsFor(item.plan->data.size(), ss);
        remaining.push_back(count);
        others += count;
    }
    uint32_t fatCount = 0, difatCount = 0;
    for (;;) {
        uint32_t fat = std::max(unitsFor(size_t{others} + fatCount + difatCount, per),
                                options.minFatSectors);
        uint32_t difat = fat > kHeaderDifat ? unitsFor(fat - kHeaderDifat, per - 1) : 0;
        if (fat == fatCount && difat == difatCount) break;
        fatCount = fat;
        difatCount = difat;
    }
    uint32_t next = fatCount + difatCount;
    auto take = [&](Chain& chain, uint32_t count) {
        for (uint32_t k = 0; k < count; ++k) chain.sectors.push_back(next++);
    };
    take(directory, directoryCount);
    take(miniFatChain, miniFatCount);
    take(container, containerCount);
    for (bool any = true; any;) {
        any = false;
        for (size_t i = 0; i < items.size(); ++i) {
            uint32_t count = options.interleave ? std::min<uint32_t>(remaining[i], 1) : remaining[i];
            take(items[i].chain, count);
            remaining[i] -= count;
            any = any || remaining[i] != 0;
        }
    }
    const uint32_t total = next;

    std::vector<uint32_t> fat(size_t{fatCount} * per, kFree);
    for (uint32_t k = 0; k < fatCount; ++k) fat[k] = kFatMark;
    for (uint32_t k = 0; k < difatCount; ++k) fat[fatCount + k] = kDifatMark;
    link(fat, directory);
    link(fat, miniFatChain);
    link(fat, container);
    for (Item& item : items) {
        if (!item.mini) link(fat, item.chain);
    }
    std::vector<uint32_t> difatNext;
    for (uint32_t k = 0; k < difatCount; ++k) difatNext.push_back(k + 1 < difatCount ? fatCount + k + 1 : kEnd);
    uint32_t difatStart = difatCount != 0 ? fatCount : kEnd;

    const uint32_t outside = total + 1000;
    for (const CfbDamage& damage : options.damage) {
        switch (damage.chain) {
            case CfbChain::kDirectory: breakChain(fat, directory, damage.kind, outside); break;
            case CfbChain::kMiniFat: breakChain(fat, miniFatChain, damage.kind, outside); break;
            case CfbChain::kMiniStream: breakChain(fat, container, damage.kind, outside); break;
            case CfbChain::kStream: {
                auto it = std::find_if(items.begin(), items.end(),
                                       [&](const Item& i) { return i.plan->name == damage.stream; });
                if (it == items.end()) throw std::invalid_argument("no such stream");
                if (it->mini) breakChain(miniFat, it->chain, damage.kind, static_cast<uint32_t>(miniFat.size()) + 1000);
                else breakChain(fat, it->chain, damage.kind, outside);
                break;
            }
            case CfbChain::kDifat:
                if (difatCount == 0 || (damage.kind != CfbBreak::kOutOfFile && difatCount < 2))
                    throw std::invalid_argument("DIFAT too short for this damage");
                if (damage.kind == CfbBreak::kOutOfFile && difatCount < 2) difatStart = outside;
                else difatNext[0] = damage.kind == CfbBreak::kLoop ? fatCount
                                  : damage.kind == CfbBreak::kEndEarly ? kEnd
                                                                       : outside;
                break;
        }
    }

    Bytes file(size_t{total + 1} * ss, 0);
    auto sectorAt = [&](uint32_t s) { return file.data() + size_t{s + 1} * ss; };
    auto fill = [&](const Chain& chain, const uint8_t* data, size_t size) {
        for (size_t k = 0; k < chain.sectors.size(); ++k) {
            size_t from = k * ss;
            if (from < size) std::memcpy(sectorAt(chain.sectors[k]), data + from, std::min<size_t>(ss, size - from));
        }
    };

    // Header.
    uint8_t* h = file.data();
    const uint8_t signature[8] = {0xD0, 0xCF, 0x11, 0xE0, 0xA1, 0xB1, 0x1A, 0xE1};
    std::memcpy(h, signature, 8);
    putAt(h + 0x18, 0x3E, 2);
    putAt(h + 0x1A, options.version, 2);
    putAt(h + 0x1C, 0xFFFE, 2);
    putAt(h + 0x1E, options.version == 3 ? 9 : 12, 2);
    putAt(h + 0x20, 6, 2);
    putAt(h + 0x28, options.version == 3 ? 0 : directoryCount, 4);
    putAt(h + 0x2C, fatCount, 4);
    putAt(h + 0x30, directory.start, 4);
    putAt(h + 0x38, kCutoff, 4);
    putAt(h + 0x3C, miniFatCount != 0 ? miniFatChain.start : kEnd, 4);
    putAt(h + 0x40, miniFatCount, 4);
    putAt(h + 0x44, difatStart, 4);
    putAt(h + 0x48, difatCount, 4);
    for (uint32_t i = 0; i < kHeaderDifat; ++i) putAt(h + 0x4C + 4 * i, i < fatCount ? i : kFree, 4);

    // Tables.
    for (uint32_t k = 0; k < fatCount; ++k) {
        for (uint32_t j = 0; j < per; ++j) putAt(sectorAt(k) + 4 * j, fat[size_t{k} * per + j], 4);
    }
    for (uint32_t k = 0; k < difatCount; ++k) {
        for (uint32_t j = 0; j + 1 < per; ++j) {
            uint32_t listed = kHeaderDifat + k * (per - 1) + j;
            putAt(sectorAt(fatCount + k) + 4 * j, listed < fatCount ? listed : kFree, 4);
        }
        putAt(sectorAt(fatCount + k) + 4 * (per - 1), difatNext[k], 4);
    }
    Bytes miniFatBytes(size_t{miniFatCount} * ss, 0xFF);
    for (size_t i = 0; i < miniFat.size(); ++i) putAt(miniFatBytes.data() + 4 * i, miniFat[i], 4);
    fill(miniFatChain, miniFatBytes.data(), miniFatBytes.size());
    fill(container, miniBytes.data(), miniBytes.size());

    // Directory: the root, then the entries in the order given.
    std::vector<uint32_t> ids;
    for (uint32_t i = 0; i < items.size(); ++i) ids.push_back(i + 1);
    std::sort(ids.begin(), ids.end(),
              [&](uint32_t a, uint32_t b) { return nameBefore(items[a - 1].name16, items[b - 1].name16); });
    uint32_t top = buildTree(items, ids, 0, ids.size());
    Bytes dir(size_t{directoryCount} * ss, 0);
    // Unused entries too have no siblings and no child.
    for (size_t at = 0; at < dir.size(); at += 128) std::memset(dir.data() + at + 0x44, 0xFF, 12);
    writeEntry(dir.data(), utf16("Root Entry"), 5, kNoEntry, kNoEntry, top, container.start,
               miniBytes.size());
    for (size_t i = 0; i < items.size(); ++i) {
        const Item& item = items[i];
        const CfbEntryLayout& plan = *item.plan;
        writeEntry(dir.data() + (i + 1) * 128, item.name16, plan.storage ? 1 : 2, item.left, item.right, kNoEntry,
                   plan.storage ? 0 : item.chain.start, plan.storage ? 0 : plan.sizeOverride.value_or(plan.data.size()));
        if (!item.mini) fill(item.chain, plan.data.data(), plan.data.size());
    }
    fill(directory, dir.data(), dir.size());
    return file;
}

void patchLe16(Bytes& bytes, size_t offset, uint16_t value) {
    putAt(bytes.data() + offset, value, 2);
}

void patchLe32(Bytes& bytes, size_t offset, uint32_t value) {
    putAt(bytes.data() + offset, value, 4);
}

Bytes patternBytes(size_t length, uint8_t seed) {
    Bytes out(length);
    for (size_t i = 0; i < length; ++i) out[i] = static_cast<uint8_t>((i + seed) % 251);
    return out;
}

Bytes compObjStream(const std::string& userType, bool terminated) {
    Bytes out;
    putLe32(out, 0xFFFE0001);     // byte order and version
    putLe32(out, 0x00000A03);     // system version
    putLe32(out, 0xFFFFFFFF);     // reserved
    out.resize(out.size() + 16);  // class id
    putLe32(out, static_cast<uint32_t>(userType.size() + 1));
    putText(out, userType, terminated);
    if (terminated) putLe32(out, 0);  // no clipboard format
    return out;
}

Bytes ole10NativeBitmap(uint32_t size) {
    Bytes out;
    putLe32(out, size);
    out.push_back('B');
    out.push_back('M');
    for (uint32_t i = 2; i < size; ++i) out.push_back(static_cast<uint8_t>(i * 7));
    return out;
}

OlePackageBytes ole10NativePackage(const OlePackage& package) {
    OlePackageBytes result{};
    Bytes& out = result.bytes;
    putLe32(out, 0);     // total size, patched below
    putLe16(out, 0x02);  // package flags
    putText(out, package.label);
    result.labelEnd = here(out) - 1;
    putText(out, package.sourcePath);
    result.pathEnd = here(out) - 1;
    putLe32(out, 0x00030000);  // the eight bytes in front of the temporary path
    putLe32(out, static_cast<uint32_t>(package.tempPath.size() + 1));
    putText(out, package.tempPath);
    result.tempPathEnd = here(out) - 1;
    putLe32(out, static_cast<uint32_t>(package.payload.size()));
    result.payloadStart = here(out);
    out.insert(out.end(), package.payload.begin(), package.payload.end());
    uint32_t total = static_cast<uint32_t>(out.size() - 4);
    for (int i = 0; i < 4; ++i) out[i] = static_cast<uint8_t>(total >> (8 * i));
    return result;
}

Bytes attachDescStream(const std::string& name) {
    Bytes out;
    putLe32(out, 0x00000100);
    out.push_back(0x0D);
    putText(out, name, false);
    out.push_back(0x0D);
    putLe32(out, 0);
    return out;
}

OleLinkBytes oleLinkStream(const OleLink& link) {
    OleLinkBytes result{};
    Bytes& out = result.bytes;
    putLe32(out, 0x02000001);  // version
    putLe32(out, 0x00000001);  // flags: a link
    putLe32(out, 0);
    putLe32(out, 0x00000303);  // the moniker's class id begins
    out.resize(out.size() + 12);
    putLe32(out, static_cast<uint32_t>(link.path.size() + 1));
    putText(out, link.path);
    putLe16(out, 0xFFFF);
    out.push_back(0xAD);
    out.push_back(0xDE);
    result.markerEnd = here(out) - 1;
    out.insert(out.end(), link.trailer.begin(), link.trailer.end());
    return result;
}

Bytes oleObjectValue(const Bytes& storage, uint8_t idByte) {
    Bytes value(16 + storage.size(), idByte);
    std::copy(storage.begin(), storage.end(), value.begin() + 16);
    return value;
}

}  // namespace tneftest
