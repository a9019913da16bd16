// The binary roaming list file in its five versions: CRLManager and its per-version subclasses,
// the read helpers of both framings, the class factories and version detection.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "roaming_list/DataException.h"
#include "roaming_list/RLData.h"
#include "roaming_list/RLItem.h"

namespace Tarn {

class CRLFile;

inline constexpr int kMinVersion = 1;
inline constexpr int kMaxVersion = 5;

// "IS-683A".."IS-683E" for 1..5; "Invalid" otherwise.
std::string VersionName(int version);
// 1..5 for a version name (case-insensitive); 0 when the name is none of them.
int VersionFromName(const std::string& name);

class CRLManager {
public:
    CRLManager();
    virtual ~CRLManager();
    CRLManager(const CRLManager&) = delete;
    CRLManager& operator=(const CRLManager&) = delete;

    virtual int GetVersion() const = 0;
    // The per-version texts: the name users see, the standard it follows, a one-line description
    // and the name the text form prints under "Roaming List Type".
    virtual std::string GetVersionName() const;
    virtual std::string GetStandardName() const = 0;
    virtual std::string GetDescription() const = 0;
    virtual std::string GetTextTypeName() const { return GetVersionName(); }

    int GetPrefixLength() const { return 5; }

    // Takes over `data` (leaving the holder empty) and drops the list held before.
    virtual void AttachData(std::unique_ptr<CRLData>& data);
    CRLData& GetData() { return *data_; }
    const CRLData& GetData() const { return *data_; }
    std::unique_ptr<CRLData> DetachData();

    // Size and CRC check of the plain and the 5-byte-prefixed forms; run before any parsing.
    virtual bool ValidateFile(CRLFile& file);
    // Reads header and both tables. Succeeds only on a full read: the records end where the list
    // ends, with nothing but zero padding (fewer than 8 bits) before the CRC. Raises
    // CDataException when a record type is unknown to this version or the records run short or
    // long; told to stop past the end (see SetStopPastEnd), returns false with the exception's
    // text in GetLastError() instead. Call ValidateFile first.
    virtual bool ReadList(CRLFile& file);
    // Writes the whole list from byte 0 (never with the prefix); false when the pre-write check
    // refuses the list or it would not fit the 16-bit size field.
    virtual bool WriteList(CRLFile& file);

    virtual std::unique_ptr<CReadHelper> CreateAcqReadHelper() const = 0;
    virtual std::unique_ptr<CReadHelper> CreateSysReadHelper() const = 0;

    virtual uint32_t ReadHeader(CRLFile& file);
    // False (or CDataException, as ReadList) when fewer records were read than announced.
    virtual bool ReadAcqTable(CRLFile& file);
    virtual bool ReadSysTable(CRLFile& file);
    virtual uint32_t WriteHeader(CRLFile& file);
    virtual uint32_t WriteAcqTable(CRLFile& file);
    virtual uint32_t WriteSysTable(CRLFile& file);
    // Pads to a byte, patches the 16-bit size in front and appends the CRC.
    virtual void FinishList(CRLFile& file, uint32_t totalBits);
    // Refuses a list the format cannot carry: counts beyond their fields, invalid records.
    virtual bool CheckBeforeWrite();

    // Takes the outcome of `other`'s ValidateFile on the same file, which is the same for every
    // binary version: detection checks size and CRC once, not once per version.
    void AdoptValidation(const CRLManager& other);
    // With this set, ReadList gives up as soon as the records pass the end of the list, which a
    // full read never does, instead of reading on to the first fault, and reports a fault by
    // its result rather than an exception. Detection sets it for every version but the last,
    // whose fault is the one it reports: most lists are refused by one or two versions before
    // theirs, and an exception per refusal would cost more than reading the list.
    void SetStopPastEnd(bool stop) { stopPastEnd_ = stop; }

    bool IsPrefixed() const { return prefixed_; }
    // The length of the list itself in bytes, as validated (the prefix not counted).
    uint32_t GetListLength() const { return listLength_; }
    // Why the last ValidateFile, ReadList or WriteList failed.
    const std::string& GetLastError() const { return lastError_; }

protected:
    // Where ReadList gives up when told to stop past the end: the bit after the list's records.
    uint64_t StopBit() const;
    // A fault of the list being read: raised, or when told to stop past the end, kept as the
    // last error for a false result.
    bool Refuse(DataError code, const std::string& detail = {});

    std::unique_ptr<CRLData> data_;
    bool prefixed_ = false;
    uint32_t listLength_ = 0;
    bool stopPastEnd_ = false;
    std::string lastError_;
};

class CRLManagerA : public CRLManager {
public:
    int GetVersion() const override { return 1; }
    std::string GetStandardName() const override { return "IS-683-A"; }
    std::string GetDescription() const override;
    std::unique_ptr<CReadHelper> CreateAcqReadHelper() const override;
    std::unique_ptr<CReadHelper> CreateSysReadHelper() const override;
};

class CRLManagerB : public CRLManagerA {
public:
    int GetVersion() const override { return 2; }
    std::string GetStandardName() const override { return "IS-683-B"; }
    std::string GetDescription() const override;
};

class CRLManagerC : public CRLManagerA {
public:
    CRLManagerC();
    int GetVersion() const override { return 3; }
    std::string GetStandardName() const override { return "IS-683-C"; }
    std::string GetDescription() const override;
    void AttachData(std::unique_ptr<CRLData>& data) override;
    bool ReadList(CRLFile& file) override;
    uint32_t ReadHeader(CRLFile& file) override;
    std::unique_ptr<CReadHelper> CreateAcqReadHelper() const override;
    std::unique_ptr<CReadHelper> CreateSysReadHelper() const override;
};

class CRLManagerD : public CRLManagerC {
public:
    int GetVersion() const override { return 4; }
    std::string GetStandardName() const override { return "IS-683-D"; }
    std::string GetDescription() const override;
};

class RLManagerE : public CRLManagerC {
public:
    int GetVersion() const override { return 5; }
    std::string GetStandardName() const override { return "IS-683-E"; }
    std::string GetDescription() const override;
};

// Read helpers: versions 1 and 2 read a 4-bit acquisition type and create every system record
// as type 0; versions 3..5 read an 8-bit acquisition type, and a 5-bit length and a 4-bit type
// in front of each system record.
class CReadHelperAcqA : public CReadHelper {
public:
    explicit CReadHelperAcqA(int version) : version_(version) {}
    std::unique_ptr<CRLItem> CreateItem(CRLFile& file) override;

private:
    int version_;
};

// The system read helpers place the records of the table they read in an arena of their own.
class CReadHelperSysA : public CReadHelper {
public:
    explicit CReadHelperSysA(int version) : version_(version) {}
    std::unique_ptr<CRLItem> CreateItem(CRLFile& file) override;

private:
    int version_;
    CItemArena arena_;
};

class CReadHelperAcqC : public CReadHelper {
public:
    explicit CReadHelperAcqC(int version) : version_(version) {}
    std::unique_ptr<CRLItem> CreateItem(CRLFile& file) override;

private:
    int version_;
};

class CReadHelperSysC : public CReadHelper {
public:
    explicit CReadHelperSysC(int version) : version_(version) {}
    std::unique_ptr<CRLItem> CreateItem(CRLFile& file) override;

private:
    int version_;
    CItemArena arena_;
};

// Stateless per-version factories of the version's objects.
class CRLClassFactory {
public:
    virtual ~CRLClassFactory() = default;
    virtual int GetVersion() const = 0;
    virtual std::unique_ptr<CRLManager> CreateManager() const = 0;
};

class CRLClassFactoryA : public CRLClassFactory {
public:
    int GetVersion() const override { return 1; }
    std::unique_ptr<CRLManager> CreateManager() const override;
};
class CRLClassFactoryB : public CRLClassFactory {
public:
    int GetVersion() const override { return 2; }
    std::unique_ptr<CRLManager> CreateManager() const override;
};
class CRLClassFactoryC : public CRLClassFactory {
public:
    int GetVersion() const override { return 3; }
    std::unique_ptr<CRLManager> CreateManager() const override;
};
class CRLClassFactoryD : public CRLClassFactory {
public:
    int GetVersion() const override { return 4; }
    std::unique_ptr<CRLManager> CreateManager() const override;
};
class RLClassFactoryE : public CRLClassFactory {
public:
    int GetVersion() const override { return 5; }
    std::unique_ptr<CRLManager> CreateManager() const override;
};

// 1 -> A, 2 -> B, 3 -> C, 4 -> D, anything else -> E.
std::unique_ptr<CRLClassFactory> CreateClassFactory(int version);

// The process-wide current version that New commands set (0 until one is chosen).
int GetCurrentVersion();
void SetCurrentVersion(int version);

// The outcome of trying the five managers in version order on a binary file.
struct DetectResult {
    std::unique_ptr<CRLManager> manager;  // the manager that read the file, holding its list
    bool sizeAndCrcValid = false;         // some manager's size and CRC check passed
    std::string error;                    // why the last manager that got past validation failed
};

// Tries CRLManagerA..RLManagerE in order; the first whose ValidateFile and ReadList succeed wins.
DetectResult DetectVersion(CRLFile& file);

}  // namespace Tarn
