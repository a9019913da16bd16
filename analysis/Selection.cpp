#include "analysis/Selection.h"

#include "analysis/Providers.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <sstream>

#include "roaming_list/RLData.h"
#include "roaming_list/SysItem.h"

namespace Tarn::Analysis {
namespace {

void AddOnce(std::vector<size_t>& bucket, size_t index) {
    // Records are indexed in list order, so a record listing one key twice is its bucket's last.
    if (bucket.empty() || bucket.back() != index) bucket.push_back(index);
}

}  // namespace

const char* VerdictName(Verdict verdict) {
    switch (verdict) {
        case Verdict::Preferred: return "preferred";
        case Verdict::Negative: return "negative";
        case Verdict::UnlistedAllowed: return "unlisted-allowed";
        case Verdict::UnlistedForbidden: return "unlisted-forbidden";
    }
    return "unknown";
}

Selector::Selector(const CRLData& data) : data_(data), facts_(data) {
    // Every bucket holds the records that could name an observation with that key; the rule
    // itself (MatchSpecificity) still decides, so a bucket may say too much but never too little.
    NamedSystems named;
    for (size_t i = 0; i < facts_.SystemCount(); ++i) {
        named.sids.clear();
        named.mccs.clear();
        named.subnets.clear();
        AddNamedSystems(facts_.System(i), named);
        for (const auto& s : named.sids) AddOnce(bySid_[s.sid], i);
        for (const auto& m : named.mccs) AddOnce(byMcc_[m.mcc], i);
        for (const auto& subnet : named.subnets) {
            if (subnet.length >= 16) AddOnce(bySubnetWord_[subnet.words[0]], i);
            else AddOnce(shortSubnets_, i);
        }
    }
}

std::vector<size_t> Selector::Candidates(const Observation& o) const {
    auto bucket = [](const auto& map, unsigned key) -> const std::vector<size_t>* {
        auto it = map.find(key);
        return it == map.end() ? nullptr : &it->second;
    };
    std::vector<size_t> out;
    switch (o.kind) {
        case Observation::Kind::Sid:
            if (auto* b = bucket(bySid_, o.sid)) out = *b;
            break;
        case Observation::Kind::MccMnc:
            if (o.mcc.size() == 3 && o.mcc.find_first_not_of("0123456789") == std::string::npos)
                if (auto* b = bucket(byMcc_, static_cast<unsigned>(std::stoul(o.mcc)))) out = *b;
            break;
        case Observation::Kind::Subnet: {
            const std::vector<size_t>* b = bucket(bySubnetWord_, o.address[0]);
            out.reserve(shortSubnets_.size() + (b ? b->size() : 0));
            if (b) std::merge(b->begin(), b->end(), shortSubnets_.begin(), shortSubnets_.end(),
                              std::back_inserter(out));
            else out = shortSubnets_;
            // A record with several subnets may sit in both lists.
            out.erase(std::unique(out.begin(), out.end()), out.end());
            break;
        }
    }
    return out;
}

std::vector<SelectionCandidate> Selector::Matches(const Observation& o) const {
    std::vector<SelectionCandidate> out;
    const bool channelKnown = o.band && o.channel;
    for (size_t i : Candidates(o)) {
        std::optional<int> specificity = MatchSpecificity(facts_.System(i), o);
        if (!specificity) continue;
        SelectionCandidate c;
        c.index = i;
        c.specificity = *specificity;
        if (channelKnown) c.covers = facts_.SystemCoverage(i).Covers(*o.band, *o.channel);
        out.push_back(c);
    }
    return out;
}

SelectionResult Selector::Decide(const Observation& o) const {
    SelectionResult result;
    result.observation = o;
    result.candidates = Matches(o);
    for (auto& c : result.candidates) {
        c.geo = facts_.Facts(c.index).geo;
        c.level = facts_.Facts(c.index).level;
        c.preferred = facts_.Facts(c.index).preferred;
    }

    const CPropData& header = data_.GetProperties();
    if (result.candidates.empty()) {
        // Nothing names the system: the header alone decides whether the handset may stay.
        result.verdict = header.prefOnly ? Verdict::UnlistedForbidden : Verdict::UnlistedAllowed;
        if (!header.prefOnly) result.roamInd = header.defRoamInd;
        return result;
    }

    // A record the handset can reach on the channel where the system was found beats one it
    // cannot; when none can, the identity matches stand.
    const bool anyCovers = std::any_of(result.candidates.begin(), result.candidates.end(),
                                       [](const SelectionCandidate& c) { return c.covers == true; });
    // Then the most specific record; a tie goes to the earliest in the list, which the strict
    // comparison keeps since candidates are in list order.
    SelectionCandidate* winner = nullptr;
    for (auto& c : result.candidates) {
        if (anyCovers && c.covers != true) continue;
        if (!winner || c.specificity > winner->specificity) winner = &c;
    }
    for (auto& c : result.candidates) {
        if (&c == winner) continue;
        c.lost = anyCovers && c.covers != true           ? LossReason::ChannelNotCovered
                 : c.specificity < winner->specificity ? LossReason::LessSpecific
                                                         : LossReason::LaterInList;
    }

    const CSysItem& record = facts_.System(winner->index);
    SelectionMatch match;
    match.index = winner->index;
    match.geo = winner->geo;
    match.level = winner->level;
    match.preferred = winner->preferred;
    if (winner->preferred) match.roamInd = record.GetRoamInd();
    match.acqIndex = record.GetAcqIndex();
    match.acqCovers = winner->covers;
    result.match = match;
    result.verdict = winner->preferred ? Verdict::Preferred : Verdict::Negative;
    result.roamInd = match.roamInd;
    return result;
}

SelectionResult Selector::Select(const Observation& o) const {
    SelectionResult result = Decide(o);
    if (!result.match) return result;
    // The handset stays on what it found but keeps scanning for what its GEO ranks higher.
    const SelectionMatch& m = *result.match;
    const auto [first, last] = facts_.GeoRange(m.geo);
    for (size_t i = first; i < last; ++i) {
        const SystemFacts& f = facts_.Facts(i);
        if (!KeepsLookingFor(f, m.preferred, m.level)) continue;
        result.morePreferred.push_back({i, f.level, facts_.SystemCoverage(i)});
    }
    return result;
}

std::string LossReasonText(const SelectionCandidate& c, const SelectionResult& result) {
    const auto& o = result.observation;
    switch (c.lost) {
        case LossReason::None: return "the winner";
        case LossReason::ChannelNotCovered:
            return "its acquisition record does not scan band " + std::to_string(o.band.value_or(0)) +
                   " channel " + std::to_string(o.channel.value_or(0));
        case LossReason::LessSpecific: {
            int best = 0;
            for (const auto& w : result.candidates)
                if (w.lost == LossReason::None) best = w.specificity;
            return "less specific (" + std::to_string(c.specificity) + " against the winner's " +
                   std::to_string(best) + ")";
        }
        case LossReason::LaterInList: return "as specific as the winner, which comes first";
    }
    return "";
}

namespace {

std::string CoverageNote(const std::optional<bool>& covers, const Observation& o) {
    if (!covers) return "";
    return *covers ? " (scans band " + std::to_string(*o.band) + " channel " + std::to_string(*o.channel) + ")"
                   : " (does not scan band " + std::to_string(*o.band) + " channel " +
                         std::to_string(*o.channel) + ")";
}

}  // namespace

std::string FormatSelectionText(const SelectionResult& r, const ListFacts& facts,
                                const ProviderDirectory* providers) {
    // The record's text-form line, and the operators it names when the database knows them.
    const auto line = [&](size_t index) {
        std::string text = SystemLine(facts, index);
        if (providers) {
            const std::string label = OperatorLabel(OperatorsForRecord(*providers, facts.System(index)));
            if (!label.empty()) text += "  (" + label + ")";
        }
        return text;
    };
    std::ostringstream out;
    out << r.observation.Describe() << ": " << VerdictName(r.verdict) << '\n';
    if (!r.match) {
        out << "  no system record names it; the list "
            << (r.verdict == Verdict::UnlistedForbidden
                    ? "is preferred-only, so the handset may not use it"
                    : "is not preferred-only, so the handset may use it with the default roaming "
                      "indicator " + std::to_string(r.roamInd.value_or(0)))
            << '\n';
        return out.str();
    }
    const SelectionMatch& m = *r.match;
    out << "  record: " << line(m.index) << '\n';
    out << "  GEO " << m.geo << ", priority level " << m.level << ", roaming indicator "
        << (m.roamInd ? std::to_string(*m.roamInd) : std::string("none")) << '\n';
    out << "  acquisition record " << m.acqIndex << ": ";
    if (m.acqIndex < facts.AcquisitionCount())
        out << facts.AcqCoverage(m.acqIndex).ToText() << CoverageNote(m.acqCovers, r.observation);
    else out << "not in the acquisition table";
    out << '\n';
    if (m.acqCovers == false)
        out << "  no record naming this system scans the channel it was found on\n";
    if (r.morePreferred.empty()) {
        out << "  more preferred systems: none\n";
    } else {
        out << "  more preferred systems (the handset keeps looking for these):\n";
        for (const auto& s : r.morePreferred)
            out << "    " << line(s.index) << "  [level " << s.level << "; "
                << s.coverage.ToText() << "]\n";
    }
    if (r.candidates.size() > 1) {
        out << "  other matching records:\n";
        for (const auto& c : r.candidates)
            if (c.lost != LossReason::None)
                out << "    " << line(c.index) << "  [" << LossReasonText(c, r) << "]\n";
    }
    return out.str();
}

std::string FormatSelectionLine(const SelectionResult& r) {
    std::string line = r.observation.Describe() + ": " + VerdictName(r.verdict);
    if (r.match) {
        line += ", record " + std::to_string(r.match->index) + ", GEO " + std::to_string(r.match->geo) +
                ", level " + std::to_string(r.match->level);
        if (r.match->acqCovers == false) line += ", channel not covered";
    }
    line += ", roaming indicator " + (r.roamInd ? std::to_string(*r.roamInd) : std::string("none"));
    if (!r.morePreferred.empty()) {
        line += ", more preferred:";
        for (const auto& s : r.morePreferred) line.append(" ").append(std::to_string(s.index));
    }
    return line;
}

std::string FormatSelectionJson(const SelectionResult& r, const ListFacts* facts,
                                const ProviderDirectory* providers) {
    using Json = nlohmann::ordered_json;
    Json j;
    j["verdict"] = VerdictName(r.verdict);
    if (r.match) {
        const SelectionMatch& m = *r.match;
        j["match"] = {{"index", m.index},
                      {"geo", m.geo},
                      {"priority", m.level},
                      {"preferred", m.preferred},
                      {"roamInd", m.roamInd ? Json(*m.roamInd) : Json(nullptr)},
                      {"acqIndex", m.acqIndex},
                      {"acqCovers", m.acqCovers ? Json(*m.acqCovers) : Json(nullptr)}};
        if (facts && providers) {
            const auto operators = OperatorsForRecord(*providers, facts->System(m.index));
            if (!operators.empty()) j["match"]["operators"] = Json::parse(OperatorsJson(operators).dump());
        }
    } else {
        j["match"] = nullptr;
    }
    j["candidates"] = Json::array();
    for (const auto& c : r.candidates) j["candidates"].push_back(c.index);
    j["morePreferred"] = Json::array();
    for (const auto& s : r.morePreferred) j["morePreferred"].push_back(s.index);
    j["roamInd"] = r.roamInd ? Json(*r.roamInd) : Json(nullptr);
    return j.dump();
}

// ---- observations from CSV ----

namespace {

constexpr const char* kColumns[] = {"sid", "nid", "mcc", "mnc", "subnet", "band", "channel"};

std::string Trim(const std::string& text) {
    size_t first = text.find_first_not_of(" \t\r");
    if (first == std::string::npos) return "";
    size_t last = text.find_last_not_of(" \t\r");
    std::string cell = text.substr(first, last - first + 1);
    // Spreadsheets quote cells at will; nothing an observation holds needs the quotes.
    if (cell.size() >= 2 && cell.front() == '"' && cell.back() == '"') cell = cell.substr(1, cell.size() - 2);
    return cell;
}

std::vector<std::string> SplitCells(const std::string& line) {
    std::vector<std::string> cells;
    size_t start = 0;
    for (;;) {
        size_t comma = line.find(',', start);
        cells.push_back(Trim(line.substr(start, comma == std::string::npos ? std::string::npos : comma - start)));
        if (comma == std::string::npos) break;
        start = comma + 1;
    }
    return cells;
}

// The observation rule speaks of command-line options; in a file the same words name columns.
std::string AsColumnMessage(std::string message) {
    for (size_t at; (at = message.find("--")) != std::string::npos;) message.erase(at, 2);
    return message;
}

}  // namespace

ObservationCsvReader::ObservationCsvReader(std::istream& in, std::string name)
    : in_(in), name_(std::move(name)) {}

ObservationCsvReader::Status ObservationCsvReader::Fail(const std::string& message,
                                                        std::string& error) {
    failed_ = true;
    error = name_ + ":" + std::to_string(line_) + ": " + message;
    return Status::Error;
}

ObservationCsvReader::Status ObservationCsvReader::ReadLine(std::string& line, std::string& error) {
    line.clear();
    std::streambuf* buf = in_.rdbuf();
    if (!buf) return Status::End;
    int ch = buf->sbumpc();
    if (ch == std::char_traits<char>::eof()) return Status::End;
    ++line_;
    for (; ch != std::char_traits<char>::eof() && ch != '\n'; ch = buf->sbumpc()) {
        if (line.size() == kMaxLineLength)
            return Fail("line longer than " + std::to_string(kMaxLineLength) + " characters", error);
        if (ch == '\0') return Fail("not a text file (NUL byte)", error);
        line.push_back(static_cast<char>(ch));
    }
    return Status::Row;
}

ObservationCsvReader::Status ObservationCsvReader::Next(Observation& out, std::string& error) {
    if (failed_) {
        error = name_ + ":" + std::to_string(line_) + ": reading stopped at an earlier error";
        return Status::Error;
    }
    std::string line;
    for (;;) {
        Status s = ReadLine(line, error);
        if (s != Status::Row) {
            if (s == Status::End && columns_.empty()) {
                line_ = std::max<size_t>(line_, 1);
                return Fail("no header: the first line must name the columns " 
                            "sid,nid,mcc,mnc,subnet,band,channel", error);
            }
            return s;
        }
        if (line_ == 1 && line.compare(0, 3, "\xEF\xBB\xBF") == 0) line.erase(0, 3);
        if (Trim(line).empty()) continue;
        std::vector<std::string> cells = SplitCells(line);
        if (columns_.empty()) {
            for (const auto& cell : cells) {
                std::string name = cell;
                std::transform(name.begin(), name.end(), name.begin(),
                               [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
                auto it = std::find(std::begin(kColumns), std::end(kColumns), name);
                if (it == std::end(kColumns))
                    return Fail("unknown column \"" + cell +
                                    "\" in the header (the columns are sid, nid, mcc, mnc, subnet, "
                                    "band, channel)",
                                error);
                const int field = static_cast<int>(it - std::begin(kColumns));
                if (std::find(columns_.begin(), columns_.end(), field) != columns_.end())
                    return Fail("column \"" + name + "\" named twice in the header", error);
                columns_.push_back(field);
            }
            continue;
        }
        if (cells.size() > columns_.size())
            return Fail(std::to_string(cells.size()) + " cells, but the header names " +
                            std::to_string(columns_.size()) + " columns",
                        error);
        ObservationFields fields;
        std::string* slots[] = {&fields.sid,    &fields.nid,  &fields.mcc,    &fields.mnc,
                                &fields.subnet, &fields.band, &fields.channel};
        for (size_t c = 0; c < cells.size(); ++c) *slots[columns_[c]] = cells[c];
        std::string message;
        if (!ParseObservation(fields, out, message)) return Fail(AsColumnMessage(message), error);
        return Status::Row;
    }
}

}  // namespace Tarn::Analysis
