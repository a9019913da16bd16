#include "analysis/Providers.h"

#include <libxml/parser.h>
#include <libxml/tree.h>
#include <libxml/xmlerror.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <memory>
#include <mutex>
#include <nlohmann/json.hpp>

#include "analysis/SharedLibrary.h"
#include "foundation/AtomicFile.h"
#include "roaming_list/SysItemHelpers.h"
#include "roaming_list/SysItemIS2000.h"
#include "roaming_list/SysItemMccMnc.h"
#include "roaming_list/SysItemPlmn.h"

namespace Tarn::Analysis {
namespace {

// The installed database is under half a megabyte; anything far beyond that is not a provider
// file. The limit also stays below the size from which libxml2 refuses a document unless its
// hardening limits are switched off, so every file under it is really read.
constexpr uint64_t kMaxXmlBytes = 8ull * 1024 * 1024;
constexpr uint64_t kMaxJsonBytes = 8ull * 1024 * 1024;
// A name longer than this is not a name a grid cell or a report line should carry.
constexpr size_t kMaxNameLength = 200;
constexpr unsigned kMaxSid = 32767;

// libxml2 is opened the first time a provider database is read: it brings ICU with it, and
// loading both at start-up would cost every tarn-cli verb more than most of them take to run.
struct XmlLibrary {
    decltype(&::xmlReadMemory) readMemory = nullptr;
    decltype(&::xmlFreeDoc) freeDoc = nullptr;
    decltype(&::xmlDocGetRootElement) rootElement = nullptr;
    decltype(&::xmlStrcmp) strcmp = nullptr;
    decltype(&::xmlGetNoNsProp) getNoNsProp = nullptr;
    decltype(&::xmlHasNsProp) hasNsProp = nullptr;
    decltype(&::xmlResetLastError) resetLastError = nullptr;
    decltype(&::xmlGetLastError) getLastError = nullptr;
    // xmlFree is a variable of the library's holding its free function: this is its address.
    xmlFreeFunc* freeSlot = nullptr;
};

// The library, or nothing with the reason in `error`.
const XmlLibrary* Xml(std::string& error) {
    static XmlLibrary xml;
    static std::string failure;
    static const bool loaded = SharedLibrary::Resolve(
        TARN_LIBXML2_SONAME,
        {Bind("xmlReadMemory", xml.readMemory), Bind("xmlFreeDoc", xml.freeDoc),
         Bind("xmlDocGetRootElement", xml.rootElement), Bind("xmlStrcmp", xml.strcmp),
         Bind("xmlGetNoNsProp", xml.getNoNsProp), Bind("xmlHasNsProp", xml.hasNsProp),
         Bind("xmlResetLastError", xml.resetLastError), Bind("xmlGetLastError", xml.getLastError),
         Bind("xmlFree", xml.freeSlot)},
        failure);
    error = failure;
    return loaded ? &xml : nullptr;
}

bool Is(const XmlLibrary& xml, const xmlNode* node, const char* name) {
    return node->type == XML_ELEMENT_NODE && xml.strcmp(node->name, BAD_CAST name) == 0;
}

std::string Attribute(const XmlLibrary& xml, const xmlNode* node, const char* name) {
    xmlChar* value = xml.getNoNsProp(node, BAD_CAST name);
    if (!value) return {};
    std::string text(reinterpret_cast<const char*>(value));
    (*xml.freeSlot)(value);
    return text;
}

std::string Trim(const std::string& s) {
    const auto b = s.find_first_not_of(" \t\r\n");
    if (b == std::string::npos) return {};
    return s.substr(b, s.find_last_not_of(" \t\r\n") - b + 1);
}

// The element's own text. Entity references are left out on purpose: the parser substitutes the
// predefined ones (&amp;) itself, and anything a hostile DTD defines must never be expanded.
std::string Text(const xmlNode* node) {
    std::string text;
    for (const xmlNode* c = node->children; c; c = c->next)
        if ((c->type == XML_TEXT_NODE || c->type == XML_CDATA_SECTION_NODE) && c->content)
            text += reinterpret_cast<const char*>(c->content);
    text = Trim(text);
    if (text.size() > kMaxNameLength) text.resize(kMaxNameLength);
    return text;
}

// The <name> without a language, else the first one.
std::string NameOf(const XmlLibrary& xml, const xmlNode* parent) {
    std::string first;
    for (const xmlNode* c = parent->children; c; c = c->next) {
        if (!Is(xml, c, "name")) continue;
        std::string text = Text(c);
        if (text.empty()) continue;
        if (!xml.hasNsProp(c, BAD_CAST "lang", XML_XML_NAMESPACE)) return text;
        if (first.empty()) first = std::move(text);
    }
    return first;
}

bool AllDigits(const std::string& s, size_t minLength, size_t maxLength) {
    return s.size() >= minLength && s.size() <= maxLength &&
           std::all_of(s.begin(), s.end(), [](unsigned char c) { return std::isdigit(c); });
}

std::string Upper(std::string s) {
    std::transform(s.begin(), s.end(), s.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return s;
}

std::string Basename(const std::string& path) {
    return std::filesystem::path(path).filename().string();
}

// ISO 3166 alpha-2 -> the name people use (iso-codes' common name where it has one, so
// "Bolivia" rather than "Bolivia, Plurinational State of").
std::map<std::string, std::string> ReadCountryNames(std::string_view json, const std::string& name,
                                                    std::vector<std::string>& warnings) {
    std::map<std::string, std::string> names;
    if (json.empty()) return names;
    const nlohmann::json doc = nlohmann::json::parse(json.begin(), json.end(), nullptr, false);
    const auto list = doc.is_object() ? doc.find("3166-1") : doc.end();
    if (doc.is_discarded() || list == doc.end() || !list->is_array()) {
        warnings.push_back(name + ": not a list of ISO 3166 countries; country names are left out");
        return names;
    }
    for (const auto& entry : *list) {
        if (!entry.is_object()) continue;
        const auto code = entry.find("alpha_2");
        auto text = entry.find("common_name");
        if (text == entry.end() || !text->is_string()) text = entry.find("name");
        if (code == entry.end() || !code->is_string() || text == entry.end() || !text->is_string())
            continue;
        std::string value = text->get<std::string>();
        if (value.size() > kMaxNameLength) value.resize(kMaxNameLength);
        names[Upper(code->get<std::string>())] = std::move(value);
    }
    return names;
}

bool ReadIfPresent(const std::string& path, uint64_t cap, std::string& contents,
                   std::vector<std::string>& warnings) {
    std::error_code ec;
    if (path.empty() || !std::filesystem::exists(path, ec)) return false;
    std::vector<uint8_t> bytes;
    std::string error;
    if (!ReadWholeFile(path, bytes, error, cap)) {
        warnings.push_back(error);
        return false;
    }
    contents.assign(bytes.begin(), bytes.end());
    return true;
}

struct XmlDocDeleter {
    const XmlLibrary* xml;
    void operator()(xmlDoc* doc) const { xml->freeDoc(doc); }
};

}  // namespace

void ProviderDirectory::Claim(std::vector<uint32_t>& owners, uint32_t index) {
    if (std::find(owners.begin(), owners.end(), index) == owners.end()) owners.push_back(index);
}

ProviderDirectory ProviderDirectory::Parse(std::string_view xml, std::string_view iso3166Json,
                                           const std::string& xmlName,
                                           std::vector<std::string>& warnings) {
    ProviderDirectory dir;
    std::vector<std::string> found;
    const auto countries = ReadCountryNames(iso3166Json, "country names", found);
    if (xml.size() > kMaxXmlBytes) {
        found.push_back(xmlName + ": too large for a provider database; operator names are left out");
        dir.warnings_ = found;
        warnings.insert(warnings.end(), found.begin(), found.end());
        return dir;
    }
    std::string unavailable;
    const XmlLibrary* lib = Xml(unavailable);
    if (!lib) {
        found.push_back(xmlName + ": " + unavailable + "; operator names are left out");
        dir.warnings_ = found;
        warnings.insert(warnings.end(), found.begin(), found.end());
        return dir;
    }
    // No network, no DTD loading, no entity substitution, and libxml2 keeps quiet: the one
    // warning we give says what went wrong.
    const int options = XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING;
    lib->resetLastError();
    std::unique_ptr<xmlDoc, XmlDocDeleter> doc(
        lib->readMemory(xml.data(), static_cast<int>(xml.size()), nullptr, nullptr, options),
        XmlDocDeleter{lib});
    const xmlNode* root = doc ? lib->rootElement(doc.get()) : nullptr;
    if (!root || !Is(*lib, root, "serviceproviders")) {
        std::string why = "no <serviceproviders> element";
        if (!doc) {
            const xmlError* e = lib->getLastError();
            why = e && e->message ? Trim(e->message) + " at line " + std::to_string(e->line)
                                  : std::string("not well-formed XML");
        }
        found.push_back(xmlName + ": not a provider database (" + why +
                        "); operator names are left out");
        dir.warnings_ = found;
        warnings.insert(warnings.end(), found.begin(), found.end());
        return dir;
    }

    size_t skipped = 0;
    for (const xmlNode* country = root->children; country; country = country->next) {
        if (!Is(*lib, country, "country")) continue;
        const std::string code = Upper(Trim(Attribute(*lib, country, "code")));
        std::string countryName;
        if (auto it = countries.find(code); it != countries.end()) countryName = it->second;
        if (countryName.empty()) countryName = NameOf(*lib, country);
        if (countryName.empty()) countryName = code;
        for (const xmlNode* provider = country->children; provider; provider = provider->next) {
            if (!Is(*lib, provider, "provider")) continue;
            const std::string name = NameOf(*lib, provider);
            if (name.empty()) continue;
            const auto index = static_cast<uint32_t>(dir.operators_.size());
            bool claimed = false;
            for (const xmlNode* net = provider->children; net; net = net->next) {
                const bool cdma = Is(*lib, net, "cdma");
                if (!cdma && !Is(*lib, net, "gsm")) continue;
                for (const xmlNode* id = net->children; id; id = id->next) {
                    if (cdma && Is(*lib, id, "sid")) {
                        const std::string value = Trim(Attribute(*lib, id, "value"));
                        if (!AllDigits(value, 1, 5) || std::stoul(value) > kMaxSid) {
                            ++skipped;
                            continue;
                        }
                        dir.Claim(dir.bySid_[static_cast<unsigned>(std::stoul(value))], index);
                        claimed = true;
                    } else if (!cdma && Is(*lib, id, "network-id")) {
                        const std::string mcc = Trim(Attribute(*lib, id, "mcc"));
                        const std::string mnc = Trim(Attribute(*lib, id, "mnc"));
                        if (!AllDigits(mcc, 3, 3) || !AllDigits(mnc, 2, 3)) {
                            ++skipped;
                            continue;
                        }
                        dir.Claim(dir.byMccMnc_[mcc + "-" + mnc], index);
                        claimed = true;
                    }
                }
            }
            if (claimed) dir.operators_.push_back({name, code, countryName});
        }
    }
    if (skipped)
        found.push_back(xmlName + ": " + std::to_string(skipped) +
                        " SID or MCC/MNC value(s) that are not numbers in range were skipped");
    dir.warnings_ = found;
    warnings.insert(warnings.end(), found.begin(), found.end());
    return dir;
}

ProviderDirectory ProviderDirectory::Load(const std::string& providersXml,
                                          const std::string& iso3166Json,
                                          std::vector<std::string>& warnings) {
    std::vector<std::string> readFaults;
    std::string xml, json;
    const bool haveXml = ReadIfPresent(providersXml, kMaxXmlBytes, xml, readFaults);
    ReadIfPresent(iso3166Json, kMaxJsonBytes, json, readFaults);
    if (!haveXml) {
        ProviderDirectory empty;
        empty.warnings_ = readFaults;
        warnings.insert(warnings.end(), readFaults.begin(), readFaults.end());
        return empty;
    }
    warnings.insert(warnings.end(), readFaults.begin(), readFaults.end());
    ProviderDirectory dir = Parse(xml, json, Basename(providersXml), warnings);
    dir.warnings_.insert(dir.warnings_.begin(), readFaults.begin(), readFaults.end());
    return dir;
}

const ProviderDirectory& ProviderDirectory::Shared(const std::string& overridePath) {
    static std::mutex mutex;
    static std::map<std::string, std::unique_ptr<ProviderDirectory>> loaded;
    std::lock_guard<std::mutex> lock(mutex);
    auto& slot = loaded[overridePath];
    if (!slot) {
        std::vector<std::string> warnings;
        const std::string xml = overridePath.empty() ? kDefaultProvidersXml : overridePath;
        slot = std::make_unique<ProviderDirectory>(Load(xml, kDefaultIso3166Json, warnings));
        std::error_code ec;
        if (!overridePath.empty() && !std::filesystem::exists(overridePath, ec))
            slot->warnings_.insert(slot->warnings_.begin(),
                                   "No such provider database: " + overridePath +
                                       "; operator names are left out");
    }
    return *slot;
}

std::vector<Operator> ProviderDirectory::Collect(const std::vector<uint32_t>& indices) const {
    std::vector<Operator> out;
    for (uint32_t i : indices)
        if (std::find(out.begin(), out.end(), operators_[i]) == out.end())
            out.push_back(operators_[i]);
    return out;
}

std::vector<Operator> ProviderDirectory::ForSid(unsigned sid) const {
    const auto it = bySid_.find(sid);
    return it == bySid_.end() ? std::vector<Operator>{} : Collect(it->second);
}

std::vector<Operator> ProviderDirectory::ForMccMnc(const std::string& mcc,
                                                   const std::string& mnc) const {
    if (!AllDigits(mcc, 3, 3) || !AllDigits(mnc, 2, 3)) return {};
    if (auto it = byMccMnc_.find(mcc + "-" + mnc); it != byMccMnc_.end()) return Collect(it->second);
    std::string other;
    if (mnc.size() == 2)
        other = "0" + mnc;
    else if (mnc[0] == '0')
        other = mnc.substr(1);
    if (auto it = byMccMnc_.find(mcc + "-" + other); !other.empty() && it != byMccMnc_.end())
        return Collect(it->second);
    return {};
}

std::vector<Operator> OperatorsForRecord(const ProviderDirectory& directory, const CSysItem& item) {
    std::vector<Operator> out;
    auto add = [&out](const std::vector<Operator>& more) {
        for (const auto& op : more)
            if (std::find(out.begin(), out.end(), op) == out.end()) out.push_back(op);
    };
    if (directory.Empty()) return out;
    using SysFields::FormatMcc;
    using SysFields::FormatMnc;
    if (const auto* mcc1x = dynamic_cast<const CSysItemIS2000Mcc*>(&item)) {
        char imsi[3];
        std::snprintf(imsi, sizeof imsi, "%02u", mcc1x->GetImsi() % 100);
        char mcc[4];
        std::snprintf(mcc, sizeof mcc, "%03u", mcc1x->GetMcc() % 1000);
        add(directory.ForMccMnc(mcc, imsi));
    } else if (const auto* is2000 = dynamic_cast<const CSysItemIS2000*>(&item)) {
        add(directory.ForSid(is2000->GetSid()));
    } else if (const auto* mccMnc = dynamic_cast<const CSysItemMccMnc*>(&item)) {
        add(directory.ForMccMnc(FormatMcc(mccMnc->GetMcc()), FormatMnc(mccMnc->GetMnc())));
        if (mccMnc->GetSubtype() == CSysItemMccMnc::kSid ||
            mccMnc->GetSubtype() == CSysItemMccMnc::kSidNid)
            for (uint16_t sid : mccMnc->GetSids()) add(directory.ForSid(sid));
    } else if (const auto* plmn = dynamic_cast<const CSysItemPlmn*>(&item)) {
        if (plmn->GetPlmnType() != 0)
            add(directory.ForMccMnc(FormatMcc(plmn->GetMcc()), FormatMnc(plmn->GetMnc())));
    }
    return out;
}

namespace {

// Operators grouped by country, countries in order of first appearance.
std::vector<std::pair<std::string, std::vector<std::string>>> ByCountry(
    const std::vector<Operator>& operators) {
    std::vector<std::pair<std::string, std::vector<std::string>>> groups;
    for (const auto& op : operators) {
        const std::string& country = op.countryName.empty() ? op.countryCode : op.countryName;
        auto it = std::find_if(groups.begin(), groups.end(),
                               [&](const auto& g) { return g.first == country; });
        if (it == groups.end()) it = groups.insert(groups.end(), {country, {}});
        if (std::find(it->second.begin(), it->second.end(), op.name) == it->second.end())
            it->second.push_back(op.name);
    }
    return groups;
}

}  // namespace

std::string OperatorLabel(const std::vector<Operator>& operators) {
    std::string label;
    for (const auto& [country, names] : ByCountry(operators)) {
        if (!label.empty()) label += " / ";
        for (size_t i = 0; i < names.size(); ++i) label += (i ? " / " : "") + names[i];
        if (!country.empty()) label += " (" + country + ")";
    }
    return label;
}

std::string OperatorNames(const std::vector<Operator>& operators) {
    std::vector<std::string> names;
    for (const auto& op : operators)
        if (std::find(names.begin(), names.end(), op.name) == names.end()) names.push_back(op.name);
    std::string label;
    for (const auto& name : names) label += (label.empty() ? "" : " / ") + name;
    return label;
}

std::string CountryLabel(const std::vector<Operator>& operators) {
    std::string label;
    for (const auto& group : ByCountry(operators)) {
        if (group.first.empty()) continue;
        if (!label.empty()) label += " / ";
        label += group.first;
    }
    return label;
}

nlohmann::json OperatorsJson(const std::vector<Operator>& operators) {
    nlohmann::json out = nlohmann::json::array();
    for (const auto& op : operators)
        out.push_back({{"name", op.name}, {"country", op.countryCode}, {"countryName", op.countryName}});
    return out;
}

}  // namespace Tarn::Analysis
