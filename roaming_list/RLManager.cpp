#include "roaming_list/RLManager.h"

#include <algorithm>
#include <cctype>
#include <vector>

#include "roaming_list/AcqItem.h"
#include "roaming_list/DataException.h"
#include "roaming_list/NameTables.h"
#include "roaming_list/RLFile.h"
#include "roaming_list/SysItem.h"

namespace Tarn {

std::string VersionName(int version) { return CRLNameTables::Instance().VersionName(version); }

int VersionFromName(const std::string& name) {
    std::string upper(name);
    std::transform(upper.begin(), upper.end(), upper.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    for (int v = kMinVersion; v <= kMaxVersion; ++v)
        if (VersionName(v) == upper) return v;
    return 0;
}

CRLManager::CRLManager() : data_(std::make_unique<CRLData>()) {}
CRLManager::~CRLManager() = default;

std::string CRLManager::GetVersionName() const { return VersionName(GetVersion()); }

void CRLManager::AttachData(std::unique_ptr<CRLData>& data) {
    if (!data) return;
    data_ = std::move(data);
}

std::unique_ptr<CRLData> CRLManager::DetachData() {
    auto out = std::move(data_);
    data_ = std::make_unique<CRLData>();
    return out;
}

void CRLManager::AdoptValidation(const CRLManager& other) {
    prefixed_ = other.prefixed_;
    listLength_ = other.listLength_;
    lastError_.clear();
}

bool CRLManager::ValidateFile(CRLFile& file) {
    file.SetManager(this);
    lastError_.clear();
    const std::vector<uint8_t>& bytes = file.Bytes();
    const uint64_t length = bytes.size();
    if (length <= 2) {
        lastError_ = "The file is too short to be a roaming list.";
        return false;
    }
    // The stored CRC is always the last two bytes of the file.
    file.Seek(length - 2);
    file.SetBitOffset(0);
    const uint16_t storedCrc = static_cast<uint16_t>(file.ReadBits(16));

    if (length > 7 && (bytes[0] == 0x02 || bytes[0] == 0x03)) {
        uint32_t bitCount = static_cast<uint32_t>(bytes[1]) | (static_cast<uint32_t>(bytes[2]) << 8) |
                            (static_cast<uint32_t>(bytes[3]) << 16) |
                            (static_cast<uint32_t>(bytes[4]) << 24);
        uint16_t size = static_cast<uint16_t>((static_cast<uint64_t>(bitCount) + 7) / 8);
        if (size == length - 5 && size >= 2 && Crc16(bytes.data() + 5, size - 2u) == storedCrc) {
            prefixed_ = true;
            listLength_ = size;
            file.SeekToBegin();
            return true;
        }
    }
    file.SeekToBegin();
    file.SetBitOffset(0);
    const uint32_t size = file.ReadBits(16);
    if (size == length && Crc16(bytes.data(), size - 2u) == storedCrc) {
        prefixed_ = false;
        listLength_ = size;
        file.SeekToBegin();
        return true;
    }
    lastError_ = size == length ? "The CRC does not match the list."
                                : "The list size field does not match the file length.";
    file.SeekToBegin();
    return false;
}

uint32_t CRLManager::ReadHeader(CRLFile& file) {
    CPropData& prop = data_->GetProperties();
    prop.listSize = static_cast<uint16_t>(file.ReadBits(16));
    uint32_t acqCount = 0;
    uint32_t sysCount = 0;
    uint32_t bits = 16 + prop.Read(file, acqCount, sysCount);
    data_->GetAcqTable().Items().SetAnnouncedCount(acqCount);
    data_->GetSysTable().Items().SetAnnouncedCount(sysCount);
    return bits;
}

uint64_t CRLManager::StopBit() const {
    if (!stopPastEnd_) return UINT64_MAX;
    const uint64_t start = prefixed_ ? static_cast<uint64_t>(GetPrefixLength()) : 0;
    return (start + (listLength_ >= 2 ? listLength_ - 2u : 0)) * 8;
}

bool CRLManager::Refuse(DataError code, const std::string& detail) {
    CDataException fault = detail.empty() ? CDataException(code) : CDataException(code, detail);
    if (!stopPastEnd_) throw fault;
    lastError_ = fault.what();
    return false;
}

bool CRLManager::ReadAcqTable(CRLFile& file) {
    auto helper = CreateAcqReadHelper();
    CRLItemList& items = data_->GetAcqTable().Items();
    data_->GetAcqTable().Read(file, *helper, StopBit());
    return items.GetSize() == items.GetAnnouncedCount() || Refuse(DataError::InvalidAcqTable);
}

bool CRLManager::ReadSysTable(CRLFile& file) {
    auto helper = CreateSysReadHelper();
    CRLItemList& items = data_->GetSysTable().Items();
    data_->GetSysTable().Read(file, *helper, StopBit());
    return items.GetSize() == items.GetAnnouncedCount() || Refuse(DataError::InvalidSysTable);
}

bool CRLManager::ReadList(CRLFile& file) {
    file.SetManager(this);
    lastError_.clear();
    // A manager reads into a fresh list, so a failed attempt leaves nothing half-filled behind.
    data_ = std::make_unique<CRLData>();
    const uint64_t start = prefixed_ ? static_cast<uint64_t>(GetPrefixLength()) : 0;
    file.Seek(start);
    file.SetBitOffset(0);
    ReadHeader(file);
    if (!ReadAcqTable(file) || !ReadSysTable(file)) return false;

    // A full read ends where the list ends: only zero padding may stand before the CRC. Without
    // this check an earlier version would happily "read" a later version's list as nonsense.
    const uint64_t consumedBits = (file.GetPosition() - start) * 8 + file.GetBitOffset();
    const uint64_t bodyBytes = listLength_ >= 2 ? listLength_ - 2u : 0;
    if ((consumedBits + 7) / 8 != bodyBytes) {
        lastError_ = consumedBits / 8 < bodyBytes ? "The records end before the list does."
                                                  : "The records run past the end of the list.";
        return Refuse(DataError::InvalidSysTable, "(" + lastError_ + ")");
    }
    if (file.GetBitOffset() != 0) {
        uint8_t last = file.Bytes()[static_cast<size_t>(file.GetPosition())];
        if ((last & (0xFFu >> file.GetBitOffset())) != 0) {
            lastError_ = "The padding after the last record is not zero.";
            return Refuse(DataError::InvalidSysTable, "(" + lastError_ + ")");
        }
    }
    return true;
}

uint32_t CRLManager::WriteHeader(CRLFile& file) {
    uint32_t acqCount = static_cast<uint32_t>(data_->GetAcqTable().GetSize());
    uint32_t sysCount = static_cast<uint32_t>(data_->GetSysTable().GetSize());
    return data_->GetProperties().Write(file, &acqCount, &sysCount);
}

uint32_t CRLManager::WriteAcqTable(CRLFile& file) { return data_->GetAcqTable().Write(file); }
uint32_t CRLManager::WriteSysTable(CRLFile& file) { return data_->GetSysTable().Write(file); }

bool CRLManager::CheckBeforeWrite() {
    const CRLItemList& acq = data_->GetAcqTable().Items();
    const CRLItemList& sys = data_->GetSysTable().Items();
    if (acq.GetSize() > 511) {
        lastError_ = "An acquisition table holds at most 511 records.";
        return false;
    }
    if (sys.GetSize() > 16383) {
        lastError_ = "A system table holds at most 16383 records.";
        return false;
    }
    for (size_t i = 0; i < acq.GetSize(); ++i) {
        auto* item = dynamic_cast<const CAcqItem*>(acq.GetAt(i));
        if (!item || !item->IsValid()) {
            lastError_ = "Acquisition record " + std::to_string(i) + " is not valid.";
            return false;
        }
    }
    for (size_t i = 0; i < sys.GetSize(); ++i) {
        auto* item = dynamic_cast<const CSysItem*>(sys.GetAt(i));
        if (!item || !item->IsValid()) {
            lastError_ = "System record " + std::to_string(i) + " is not valid.";
            return false;
        }
    }
    return true;
}

bool CRLManager::WriteList(CRLFile& file) {
    lastError_.clear();
    if (!CheckBeforeWrite()) return false;
    file.SetManager(this);
    file.SetLength(0);
    // The largest list the size field allows, so the image never moves while it grows.
    file.Reserve(0x10000);
    file.SetBitOffset(0);
    file.Seek(2);
    uint32_t total = 16;
    total += WriteHeader(file);
    total += WriteAcqTable(file);
    total += WriteSysTable(file);
    if ((total + 7) / 8 + 2 > 0xFFFF) {
        lastError_ = "The list would be " + std::to_string((total + 7) / 8 + 2) +
                     " bytes; its 16-bit size field holds at most 65,535.";
        file.SetLength(0);
        return false;
    }
    FinishList(file, total);
    return true;
}

void CRLManager::FinishList(CRLFile& file, uint32_t totalBits) {
    totalBits += static_cast<uint32_t>(file.PadToByte(totalBits));
    const uint32_t size = (totalBits + 23) / 8;
    file.SetBitOffset(0);
    file.SeekToBegin();
    file.WriteBits(16, size);
    const uint16_t crc = Crc16(file.Bytes().data(), size - 2u);
    file.Seek(size - 2u);
    file.SetBitOffset(0);
    file.WriteBits(16, crc);
    file.SetLength(size);
    data_->GetProperties().listSize = static_cast<uint16_t>(size);
}

std::string CRLManagerA::GetDescription() const { return "Preferred Roaming List, IS-683-A"; }
std::string CRLManagerB::GetDescription() const { return "Preferred Roaming List, IS-683-B"; }
std::string CRLManagerC::GetDescription() const {
    return "Preferred Roaming List, IS-683-C (also IS-683A+1xEV)";
}
std::string CRLManagerD::GetDescription() const { return "Extended Preferred Roaming List, IS-683-D"; }
std::string RLManagerE::GetDescription() const { return "Extended Preferred Roaming List, IS-683-E"; }

std::unique_ptr<CReadHelper> CRLManagerA::CreateAcqReadHelper() const {
    return std::make_unique<CReadHelperAcqA>(GetVersion());
}
std::unique_ptr<CReadHelper> CRLManagerA::CreateSysReadHelper() const {
    return std::make_unique<CReadHelperSysA>(GetVersion());
}

CRLManagerC::CRLManagerC() { data_->GetProperties().ssprPRev = 3; }

void CRLManagerC::AttachData(std::unique_ptr<CRLData>& data) {
    CRLManager::AttachData(data);
    data_->GetProperties().ssprPRev = 3;
}

uint32_t CRLManagerC::ReadHeader(CRLFile& file) {
    uint32_t bits = CRLManager::ReadHeader(file);
    // Whatever the file held, a list of these versions carries protocol revision 3.
    data_->GetProperties().ssprPRev = 3;
    return bits;
}

bool CRLManagerC::ReadList(CRLFile& file) {
    bool ok = CRLManager::ReadList(file);
    data_->GetProperties().ssprPRev = 3;
    return ok;
}

std::unique_ptr<CReadHelper> CRLManagerC::CreateAcqReadHelper() const {
    return std::make_unique<CReadHelperAcqC>(GetVersion());
}
std::unique_ptr<CReadHelper> CRLManagerC::CreateSysReadHelper() const {
    return std::make_unique<CReadHelperSysC>(GetVersion());
}

std::unique_ptr<CRLItem> CReadHelperAcqA::CreateItem(CRLFile& file) {
    return CreateAcqItem(static_cast<int>(file.ReadBits(4)), version_);
}

std::unique_ptr<CRLItem> CReadHelperSysA::CreateItem(CRLFile&) {
    return CreateSysItem(0, version_, 0, &arena_);
}

std::unique_ptr<CRLItem> CReadHelperAcqC::CreateItem(CRLFile& file) {
    return CreateAcqItem(static_cast<int>(file.ReadBits(8)), version_);
}

std::unique_ptr<CRLItem> CReadHelperSysC::CreateItem(CRLFile& file) {
    // Known records rely on their own widths; the length only lets an undefined record keep its
    // opaque bytes.
    const uint32_t lengthAndType = file.ReadBits(9);
    return CreateSysItem(static_cast<int>(lengthAndType & 0xFu), version_,
                         static_cast<int>(lengthAndType >> 4), &arena_);
}

std::unique_ptr<CRLManager> CRLClassFactoryA::CreateManager() const {
    return std::make_unique<CRLManagerA>();
}
std::unique_ptr<CRLManager> CRLClassFactoryB::CreateManager() const {
    return std::make_unique<CRLManagerB>();
}
std::unique_ptr<CRLManager> CRLClassFactoryC::CreateManager() const {
    return std::make_unique<CRLManagerC>();
}
std::unique_ptr<CRLManager> CRLClassFactoryD::CreateManager() const {
    return std::make_unique<CRLManagerD>();
}
std::unique_ptr<CRLManager> RLClassFactoryE::CreateManager() const {
    return std::make_unique<RLManagerE>();
}

std::unique_ptr<CRLClassFactory> CreateClassFactory(int version) {
    switch (version) {
        case 1: return std::make_unique<CRLClassFactoryA>();
        case 2: return std::make_unique<CRLClassFactoryB>();
        case 3: return std::make_unique<CRLClassFactoryC>();
        case 4: return std::make_unique<CRLClassFactoryD>();
        default: return std::make_unique<RLClassFactoryE>();
    }
}

namespace {
int g_currentVersion = 0;
}

int GetCurrentVersion() { return g_currentVersion; }
void SetCurrentVersion(int version) { g_currentVersion = version; }

DetectResult DetectVersion(CRLFile& file) {
    DetectResult result;
    // Size and CRC do not depend on the version: one check stands for all five.
    const std::unique_ptr<CRLManager> checked = CreateClassFactory(kMinVersion)->CreateManager();
    if (!checked->ValidateFile(file)) {
        file.SetManager(nullptr);
        result.error = "The size or CRC of the list does not match.";
        return result;
    }
    result.sizeAndCrcValid = true;
    for (int version = kMinVersion; version <= kMaxVersion; ++version) {
        std::unique_ptr<CRLManager> manager = CreateClassFactory(version)->CreateManager();
        manager->AdoptValidation(*checked);
        manager->SetStopPastEnd(version < kMaxVersion);
        try {
            if (manager->ReadList(file)) {
                manager->SetStopPastEnd(false);
                file.SetManager(nullptr);
                result.manager = std::move(manager);
                result.error.clear();
                return result;
            }
            result.error = manager->GetLastError();
        } catch (const CDataException& e) {
            result.error = e.what();
        } catch (const std::exception& e) {
            result.error = e.what();
        }
    }
    file.SetManager(nullptr);
    if (result.error.empty()) result.error = "The size or CRC of the list does not match.";
    return result;
}

}  // namespace Tarn
