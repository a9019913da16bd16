#include "roaming_list/RLItem.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <nlohmann/json.hpp>
#include <stdexcept>

#if defined(__has_include)
#if __has_include(<sanitizer/asan_interface.h>)
#include <sanitizer/asan_interface.h>
#endif
#endif
#ifndef ASAN_POISON_MEMORY_REGION
#define ASAN_POISON_MEMORY_REGION(addr, size) ((void)(addr), (void)(size))
#define ASAN_UNPOISON_MEMORY_REGION(addr, size) ((void)(addr), (void)(size))
#endif

#include "grid/Grid.h"
#include "roaming_list/FieldBuffer.h"
#include "roaming_list/RLFile.h"

namespace Tarn {

namespace {

// In front of every record: a word naming its arena block. A heap record's allocation starts a
// whole default alignment before it, so the record is aligned as ::operator new would align it.
constexpr size_t kBlockWord = sizeof(void*);
constexpr size_t kHeapFront = __STDCPP_DEFAULT_NEW_ALIGNMENT__;
static_assert(kHeapFront >= kBlockWord);

// Blocks double from a few records' worth to 64 KB: a short table wastes little, a long one
// takes few blocks, and none is large enough for the allocator to map it on its own.
constexpr size_t kFirstBlockBytes = 4096;
constexpr size_t kLastBlockBytes = 65536;

size_t RoundUp(size_t size) {
    return (size + CItemArena::kAlignment - 1) / CItemArena::kAlignment * CItemArena::kAlignment;
}

}  // namespace

CItemArena::~CItemArena() {
    if (block_ != nullptr) Release(block_);
}

void CItemArena::Release(Block* block) {
    if (--block->live != 0) return;
    ASAN_UNPOISON_MEMORY_REGION(block->Bytes(), block->capacity);
    ::operator delete(static_cast<void*>(block));
}

void* CItemArena::AllocateInNewBlock(size_t need) {
    static_assert(sizeof(Block) % kAlignment == 0, "records start at word bounds");
    const size_t capacity =
        block_ == nullptr ? kFirstBlockBytes : std::min(block_->capacity * 2, kLastBlockBytes);
    if (need > capacity) return nullptr;
    void* raw = ::operator new(sizeof(Block) + capacity);
    Block* fresh = ::new (raw) Block{1, capacity};
    if (block_ != nullptr) Release(block_);
    block_ = fresh;
    next_ = 0;
    return Place(need);
}

void* CItemArena::AllocateOnHeap(size_t size) {
    std::byte* raw = static_cast<std::byte*>(::operator new(kHeapFront + size));
    const Block* none = nullptr;
    std::memcpy(raw + kHeapFront - kBlockWord, &none, kBlockWord);
    return raw + kHeapFront;
}

void CItemArena::Deallocate(void* object, size_t size) {
    if (object == nullptr) return;
    std::byte* const at = static_cast<std::byte*>(object);
    Block* block = nullptr;
    std::memcpy(&block, at - kBlockWord, kBlockWord);
    if (block == nullptr) {
        ::operator delete(static_cast<void*>(at - kHeapFront));
        return;
    }
    // A destroyed record's bytes stay unusable until its whole block goes (the arena never places
    // a record twice in the same bytes).
    ASAN_POISON_MEMORY_REGION(at - kBlockWord, kBlockWord + RoundUp(size));
    Release(block);
}

void* CRLItem::operator new(size_t size) { return CItemArena::AllocateOnHeap(size); }

void CRLItem::operator delete(void* p, size_t size) { CItemArena::Deallocate(p, size); }

// A constructor that throws leaves no object, so no destructor told delete the record's size; a
// record in a block gives back its count without it, and the few bytes stay until the block goes.
void CRLItem::operator delete(void* p, CItemArena&) { CItemArena::Deallocate(p, 0); }

void CRLItem::WriteToGrid(Grid&, int) const {}
void CRLItem::ReadFromGrid(const Grid&, int, const GridContext&) {}
bool CRLItem::OnGridHeading(Grid&, int) const { return true; }
std::string CRLItem::ToText() const { return {}; }
bool CRLItem::AppendText(FieldBuffer& line) const {
    line.AddRaw(ToText());
    return false;
}
void CRLItem::FromText(const std::vector<std::string>&) {}
void CRLItem::FromTokens(std::span<const std::string_view> tokens) {
    FromText(std::vector<std::string>(tokens.begin(), tokens.end()));
}
void CRLItem::ToJson(nlohmann::json&) const {}
void CRLItem::FromJson(const nlohmann::json&) {}

CRLItemList::CRLItemList(const CRLItemList& other) : announced_(other.announced_) {
    items_.reserve(other.items_.size());
    for (const auto& item : other.items_) items_.push_back(item->Clone());
}

CRLItemList& CRLItemList::operator=(const CRLItemList& other) {
    if (this != &other) {
        CRLItemList copy(other);
        *this = std::move(copy);
    }
    return *this;
}

void CRLItemList::SetAnnouncedCount(uint32_t count) {
    if (count >= (1u << 30)) throw std::length_error("vector<T> too long");
    announced_ = count;
    // The largest table of any file is 16,383 records; a bigger announcement reserves no more.
    items_.reserve(std::min<uint32_t>(count, 1u << 16));
}

void CRLItemList::InsertAt(size_t index, std::unique_ptr<CRLItem> item) {
    if (index > items_.size()) index = items_.size();
    items_.insert(items_.begin() + static_cast<std::ptrdiff_t>(index), std::move(item));
}

void CRLItemList::RemoveAt(size_t index) {
    if (index < items_.size()) items_.erase(items_.begin() + static_cast<std::ptrdiff_t>(index));
}

std::unique_ptr<CRLItem> CRLItemList::TakeAt(size_t index) {
    if (index >= items_.size()) return nullptr;
    auto item = std::move(items_[index]);
    items_.erase(items_.begin() + static_cast<std::ptrdiff_t>(index));
    return item;
}

std::unique_ptr<CRLItem> CRLItemList::ReplaceAt(size_t index, std::unique_ptr<CRLItem> item) {
    std::swap(items_.at(index), item);
    return item;
}

uint32_t CRLItemList::Read(CRLFile& file, CReadHelper& helper, uint64_t stopBit) {
    uint32_t total = 0;
    // Room for the records the header announces, but no more than the bytes left could hold (a
    // record takes at least one), so a forged count cannot make a large table out of a small file.
    const uint64_t at = file.GetPosition() * 8 + file.GetBitOffset();
    const uint64_t end = std::min(stopBit, file.GetLength() * 8);
    const uint64_t fit = end > at ? (end - at) / 8 + 1 : 1;
    items_.reserve(items_.size() + static_cast<size_t>(std::min<uint64_t>(announced_, fit)));
    for (uint32_t i = 0; i < announced_; ++i) {
        std::unique_ptr<CRLItem> item = helper.CreateItem(file);
        if (!item) return 0;
        total += item->Read(file);
        if (file.GetPosition() * 8 + file.GetBitOffset() > stopBit) return 0;
        if (auto replacement = item->GetReplacement()) item = std::move(replacement);
        items_.push_back(std::move(item));
    }
    return total;
}

uint32_t CRLItemList::Write(CRLFile& file) const {
    uint32_t total = 0;
    for (const auto& item : items_) total += item->Write(file);
    return total;
}

}  // namespace Tarn
