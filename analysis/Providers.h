// The operator and country names behind SIDs and MCC-MNCs, read from the system's provider
// database (the XML desktop network managers use) and the ISO 3166 country names.
#pragma once

#include <cstdint>
#include <map>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Tarn {
class CSysItem;
}

namespace Tarn::Analysis {

struct Operator {
    std::string name;
    std::string countryCode;  // ISO 3166 alpha-2, upper case ("US")
    std::string countryName;  // "United States"; the code itself when no name is known

    bool operator==(const Operator&) const = default;
};

// Where Debian installs the two sources.
inline constexpr const char* kDefaultProvidersXml =
    "/usr/share/mobile-broadband-provider-info/serviceproviders.xml";
inline constexpr const char* kDefaultIso3166Json = "/usr/share/iso-codes/json/iso_3166-1.json";

class ProviderDirectory {
public:
    // Reads the provider XML and the country names. A missing file gives an empty directory (or
    // no country names) and no warning; a malformed one gives what could be read before the
    // fault (nothing for an XML that does not parse) and one warning line in `warnings`.
    static ProviderDirectory Load(const std::string& providersXml, const std::string& iso3166Json,
                                  std::vector<std::string>& warnings);
    // The same over contents already in memory; `xmlName` only serves the warnings. An empty
    // `iso3166Json` leaves the country names to the XML.
    static ProviderDirectory Parse(std::string_view xml, std::string_view iso3166Json,
                                   const std::string& xmlName, std::vector<std::string>& warnings);
    // The installed Debian files, or `overridePath` instead of the provider XML when non-empty;
    // loaded once per path and kept for the life of the process. An override that does not
    // exist is a warning, since the user named it.
    static const ProviderDirectory& Shared(const std::string& overridePath = "");

    std::vector<Operator> ForSid(unsigned sid) const;
    // `mcc` three digits, `mnc` two or three. An MNC matches its own spelling first; only when
    // nobody claims that spelling does "20" find "020" and the other way round, since lists and
    // the database do not always agree on the MNC's length.
    std::vector<Operator> ForMccMnc(const std::string& mcc, const std::string& mnc) const;
    bool Empty() const { return operators_.empty(); }
    // What Load reported for this directory (empty for a clean or missing file).
    const std::vector<std::string>& Warnings() const { return warnings_; }

private:
    std::vector<Operator> Collect(const std::vector<uint32_t>& indices) const;
    void Claim(std::vector<uint32_t>& owners, uint32_t index);

    std::vector<Operator> operators_;
    std::unordered_map<unsigned, std::vector<uint32_t>> bySid_;
    std::map<std::string, std::vector<uint32_t>> byMccMnc_;  // "310-260"
    std::vector<std::string> warnings_;
};

// Every operator a system record names through its SID, its SID list, its MCC-MNC or its PLMN
// (a 1x-MCC record's IMSI_11_12 counts as a two-digit MNC), deduplicated, in the record's order.
std::vector<Operator> OperatorsForRecord(const ProviderDirectory& directory, const CSysItem& item);

// "Verizon Wireless (United States)", "A / B (United States)" or "A (Canada) / B (United States)";
// empty when there is none.
std::string OperatorLabel(const std::vector<Operator>& operators);
// The countries alone, in the same order: "United States" or "Canada / United States".
std::string CountryLabel(const std::vector<Operator>& operators);

// [{"name": ..., "country": "US", "countryName": ...}] for the --json outputs.
nlohmann::json OperatorsJson(const std::vector<Operator>& operators);

}  // namespace Tarn::Analysis
