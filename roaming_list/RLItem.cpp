#include "roaming_list/RLItem.h"

#include <nlohmann/json.hpp>
#include <stdexcept>

#include "grid/Grid.h"
#include "roaming_list/RLFile.h"

namespace Tarn {

void CRLItem::WriteToGrid(Grid&, int) const {}
void CRLItem::ReadFromGrid(const Grid&, int, const GridContext&) {}
bool CRLItem::OnGridHeading(Grid&, int) const { return true; }
std::string CRLItem::ToText() const { return {}; }
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
