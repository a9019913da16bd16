// CRLItem, the base of every record of every table, and CRLItemList, the owning ordered list of
// records that every table of every file kind is made of.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Tarn {

class CAcqItem;
class CRLFile;
class FieldBuffer;
class CSysItem;
class Grid;
class CRLItemList;

// What a record needs to know about its surroundings while it is taken back from a grid row:
// the version of the list, and for system records the acquisition table they point into.
struct GridContext {
    int version = 0;
    const CRLItemList* acqTable = nullptr;
};

// Where the records of a table being read are placed: one block after another, instead of a heap
// allocation per record, which is most of what reading thousands of records costs. A block is
// given back when the last record placed in it is destroyed and the arena has moved on, so a
// record stays an ordinary object owned through std::unique_ptr<CRLItem>: it can be taken out of
// its table, kept on an undo stack and outlive both table and arena. Not for sharing between
// threads: the records of one block count down one plain counter.
class CItemArena {
public:
    // Records placed here hold nothing aligned more strictly than this (asserted where placed).
    static constexpr size_t kAlignment = alignof(void*);

    CItemArena() = default;
    CItemArena(const CItemArena&) = delete;
    CItemArena& operator=(const CItemArena&) = delete;
    ~CItemArena();

    // Room for an object of `size` bytes behind the word that names its block; nothing when it
    // would not fit a block, so the caller takes it from the heap instead. Inline while the
    // block has room: it is asked once per record.
    void* Allocate(size_t size) {
        const size_t need = sizeof(Block*) + (size + kAlignment - 1) / kAlignment * kAlignment;
        if (block_ == nullptr || block_->capacity - next_ < need) return AllocateInNewBlock(need);
        return Place(need);
    }
    // The same from the heap, with a word in front that names no block.
    static void* AllocateOnHeap(size_t size);
    // Gives back the memory of an object of `size` bytes made by either of the above.
    static void Deallocate(void* object, size_t size);

private:
    struct Block {
        // Records placed here and not yet destroyed, and one more while the arena still fills it.
        size_t live;
        size_t capacity;  // bytes after this header
        std::byte* Bytes() { return reinterpret_cast<std::byte*>(this + 1); }
    };
    static void Release(Block* block);
    void* AllocateInNewBlock(size_t need);
    void* Place(size_t need) {
        std::byte* at = block_->Bytes() + next_;
        next_ += need;
        ++block_->live;
        std::memcpy(at, &block_, sizeof block_);
        return at + sizeof block_;
    }

    Block* block_ = nullptr;
    size_t next_ = 0;  // offset of the next free byte in the block
};

class CRLItem {
public:
    virtual ~CRLItem() = default;

    // Every record carries, in the word in front of it, the arena block it was placed in or
    // nothing when it came from the heap; delete looks there to give its memory back.
    static void* operator new(size_t size);
    static void* operator new(size_t size, CItemArena& arena) {
        if (void* at = arena.Allocate(size)) return at;
        return CItemArena::AllocateOnHeap(size);
    }
    static void operator delete(void* p, size_t size);
    // Only called when a constructor throws during `new (arena) T`.
    static void operator delete(void* p, CItemArena& arena);

    // The record as an acquisition or a system record, or nothing: the text renderer asks once
    // per record, where a dynamic_cast would cost more than the record's own fields.
    virtual const CAcqItem* AsAcqItem() const { return nullptr; }
    virtual const CSysItem* AsSysItem() const { return nullptr; }

    // Binary form: each returns the number of bits consumed or produced.
    virtual uint32_t Read(CRLFile& file) = 0;
    virtual uint32_t Write(CRLFile& file) const = 0;

    // Asked right after a record was read: another record to keep in its place, or nothing.
    virtual std::unique_ptr<CRLItem> GetReplacement() { return nullptr; }

    virtual std::unique_ptr<CRLItem> Clone() const = 0;

    // Grid editing: a record fills the cells of its row and rebuilds itself from them, raising a
    // GridError naming the cell that is missing or out of range.
    virtual void WriteToGrid(Grid& grid, int row) const;
    virtual void ReadFromGrid(const Grid& grid, int row, const GridContext& context);
    // Titles the grid's columns for this record on the heading event; other events are ignored
    // and report success.
    virtual bool OnGridHeading(Grid& grid, int event) const;

    // Text form: tab-terminated fields; FromText takes the tokens of one line after its index
    // and type code.
    virtual std::string ToText() const;
    virtual void FromText(const std::vector<std::string>& tokens);
    // FromText over views into the line itself, so a table of thousands of lines is read without
    // copying its fields; this default copies them and calls FromText.
    virtual void FromTokens(std::span<const std::string_view> tokens);
    // ToText added to a line being rendered; records of large tables add their fields to it
    // directly. True when the record vouches that every field it added reads back as it is (none
    // blank, "Invalid" or holding a tab or line break), so the renderer need not look at them
    // again; this default adds ToText and vouches for nothing.
    virtual bool AppendText(FieldBuffer& line) const;

    // JSON form: the record's fields as one object (the caller adds what identifies the record).
    virtual void ToJson(nlohmann::json& out) const;
    virtual void FromJson(const nlohmann::json& in);
};

// Creates the next record of a table from the stream (reading its type where the format has one),
// or returns nothing when the type has no record class.
class CReadHelper {
public:
    virtual ~CReadHelper() = default;
    virtual std::unique_ptr<CRLItem> CreateItem(CRLFile& file) = 0;
};

// A record of type T made in `arena`, or on the heap without one.
template <typename T, typename... Args>
std::unique_ptr<T> MakeItem(CItemArena* arena, Args&&... args) {
    static_assert(alignof(T) <= CItemArena::kAlignment, "an arena places records at word bounds");
    if (arena == nullptr) return std::make_unique<T>(std::forward<Args>(args)...);
    return std::unique_ptr<T>(new (*arena) T(std::forward<Args>(args)...));
}

class CRLItemList {
public:
    CRLItemList() = default;
    CRLItemList(const CRLItemList& other);
    CRLItemList& operator=(const CRLItemList& other);
    CRLItemList(CRLItemList&&) noexcept = default;
    CRLItemList& operator=(CRLItemList&&) noexcept = default;

    // The count announced by a header before the records are read. A count of 2^30 or more is
    // refused with std::length_error; room is reserved only up to what any file can hold.
    void SetAnnouncedCount(uint32_t count);
    uint32_t GetAnnouncedCount() const { return announced_; }

    size_t GetSize() const { return items_.size(); }
    bool IsEmpty() const { return items_.empty(); }
    CRLItem* GetAt(size_t index) { return items_.at(index).get(); }
    const CRLItem* GetAt(size_t index) const { return items_.at(index).get(); }

    void Add(std::unique_ptr<CRLItem> item) { items_.push_back(std::move(item)); }
    void InsertAt(size_t index, std::unique_ptr<CRLItem> item);
    void RemoveAt(size_t index);
    std::unique_ptr<CRLItem> TakeAt(size_t index);
    std::unique_ptr<CRLItem> ReplaceAt(size_t index, std::unique_ptr<CRLItem> item);
    void Clear() { items_.clear(); }

    // Reads the announced number of records through `helper`. Stops and reports 0 bits when the
    // helper gives no record (the records read so far are kept), or when a record ends beyond
    // bit `stopBit` of the file.
    uint32_t Read(CRLFile& file, CReadHelper& helper, uint64_t stopBit = UINT64_MAX);
    // Writes every record in order; the sum of their bits.
    uint32_t Write(CRLFile& file) const;

    auto begin() { return items_.begin(); }
    auto end() { return items_.end(); }
    auto begin() const { return items_.begin(); }
    auto end() const { return items_.end(); }

private:
    std::vector<std::unique_ptr<CRLItem>> items_;
    uint32_t announced_ = 0;
};

}  // namespace Tarn
