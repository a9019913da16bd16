#include "MessageTable.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

namespace Tarn {
namespace {

struct Entry {
    unsigned id;
    std::string_view text;
};

// Sorted by id. Texts stand exactly as the system shows them, odd spellings and spacing included.
constexpr Entry kEntries[] = {
    {128, "Tarn Roaming List Editor"},
    {129, "\nUntitled-Prl\nTessary\nTessary Files(*.prl)\n.prl\nTessary.Document\nTessary Document"},
    {130, "Changing the roaming list type will cause the loss of all current records, \nDo you wish to save your data to a file?"},
    {132, "There are no acquisition records in the file."},
    {133, "Could not get the system setting view."},
    {134, "Could not get the system record view."},
    {135, "Could not get the acquisition record view."},
    {138, "Could not get the document."},
    {139, "The value in column %d, row %d of the %s is out of range.\nThe range for this input is %d - %d"},
    {140, "A required value is missing in column %d, row %d of the %s."},
    {143, "The roaming list type is different between the document and the view."},
    {144, "An error occurred while saving the ACQ records."},
    {145, "An error occurred while saving the system records."},
    {146, "There are no system records in the file."},
    {148, "The Roaming List file is invalid."},
    {151, "An error occurred trying to write the file."},
    {152, "An error occurred while converting the roaming list."},
    {153, "The value in column %d, row %d must be even."},
    {154, "A valid Roaming List needs at least one system record."},
    {155, "A vallid Roaming List needs at least one acquisiiton record."},
    {156, "An invalid ACQ Index is entered column %d, row %d of the System Record Table."},
    {157, "At least one gap was detected between channels in record %d of the ACQ table. "},
    {158, "The roaming list cannot be converted in Read Only Mode."},
    {160, "The default roaming indicator value is out of range (0-%d)."},
    {161, "The Preferred List ID value is out of range (0-%d)."},
    {162, "The roaming list is invalid.  Could not be converted to text view."},
    {163, "An invalid ACQ Index is entered column %d, row %d of the System Record Table. The IS-2000 System Type is only valid with CDMA Acquisition Types."},
    {166, "You must save all open files before converting them."},
    {167, "An invalid ACQ Index is entered column %d, row %d of the System Record Table. The IS-856 System Type is only valid with the HDR Acquisition Type."},
    {196, "An invalid ACQ Index is entered column %d, row %d of the System Record Table. The PLMN System Type is only valid with GSM and UMTS Acquisition Types."},
    {197, "An invalid ACQ Index is entered column %d, row %d of the System Record Table. The Undefined System Type is only valid with the Undefined Acquisition Type."},
    {198, "Empty rows are not allowed."},
    {199, "\nUntitled \nTessary\nText Files (*.txt)\n.txt"},
    {200, "Invalid SSPR_P_REV."},
    {202, "At least one gap was detected between UMB records in row %d of the ACQ table. "},
    {204, "An invalid ACQ Index is entered column %d, row %d of the System Record Table. The MCCMNC-SIDNID is not valid for this type"},
    {205, "An invalid ACQ Index is entered column %d, row %d of the System Record Table. The MCCMNC-SUBNET only for HDR type"},
    {206, "Bad subnet ID in %d, row %d of the System Record Table."},
    {207, "\nUntitled-Mspl \nTessary\nTessary Files (*.mspl)\n.mspl\nTessary.MsplDocument\nTessary MSPL Document"},
    {208, "There are no mspl records in the file."},
    {209, "\nUntitled-Mlpl\nTessary\nTessary MLPL Files (*.mlpl)\n.mlpl\nTessary.MlplDocument\nTessary Document"},
    {210, "\nUntitled-Plmn\nTessary\nTessary PLMN Files (*.ehplmn,*.oplmn,*.uplmn)\n.ehplmn;.oplmn;.uplmn\nTessary.PlmnDocument\nTessary Document"},
    {211, "There are no mlpl records in the file."},
    {212, "A valid Roaming List needs at least one Plmn record."},
    {213, "An error occurred while saving the Plmn records."},
    {214, "An error occurred while saving the Mspl records."},
    {215, "A valid Roaming List needs at least one Mspl record."},
    {216, "An error occurred while saving the Mlpl records."},
    {217, "A valid Roaming List needs at least one Mlpl record."},
    {218, "The value of MCC in Tab-%d is out of range.\nThe range for this input is %d - %d"},
    {219, "The value of MNC in Tab-%d is out of range.\nThe range for this input is %d - %d or FFF"},
    {220, "There are no plmn records in the file."},
    {221, "MsplIndex field in Tab-%d is out of range or empty.\nThe range for this input is %d - %d"},
    {222, "\nUntitled-Bst3Gpp \nTessary\nTessary Files (*.Bst3Gpp)\n.Bst3Gpp\nTessary.Bst3GppDocument\nBst3Gpp Document"},
    {224, "\nUntitled-TOT\nTessary\nTessary Technology Order Files (*.tot)\n.tot\nTessary.TotDocument\nTessary TOT Document"},
    {225, "There are no Technology Order records in the file."},
    {226, "A valid Technology Order List needs at least one Technology Order record."},
    {227, "An error occurred while saving Technology Order records."},
    {228, "There are no 3GPP BST records in the file."},
    {229, "A valid Technology Order List needs at least one 3GPP BST record."},
    {230, "An error occurred while saving 3GPP BST records."},
    {231, "There are redundant entries. The Rat-Ids should not be repeated"},
    {232, "Mcc value in Tab-%d is not in 3-digit format"},
    {233, "Mnc value in Tab-%d is neither in 2-digit format nor in 3-digit format"},
    {234, "\nUntitled-LAF\nTessary\nTessary LTE Available File (*.laf)\n.laf\nTessary.LafDocument\nTessary LAF Document"},
    {235, "Please enter a decimal value between 0 and 65535"},
    {236, "SID value out of range or not numeric"},
    {237, "NID value out of range or not numeric"},
    {238, "BID value out of range or not numeric"},
    {239, "CNT value out of range or not numeric"},
    {240, "Please enter a decimal value between 0 and 255"},
    {241, "A valid Roaming List needs at least one LAF record."},
    {32778, "Get a text view of this roaming list\nText View"},
    {32786, "Create a new IS-683D roaming list file.\nNew IS-683D"},
    {32787, "Create a new IS-683C roaming list file.\nNew IS-683C"},
    {32788, "Create a new IS-683B roaming list file.\nNew IS-683B"},
    {32789, "Create a new IS-683A roaming list file.\nNew IS-683A"},
    {32796, "Split a Concatenated PRL file"},
    {32797, "Join two files to form a Concatenated PRL file"},
    {32812, "Creates a new MSPL File\nNew MSPL"},
    {32817, "Create a new IS-683E roaming list file.\nNew IS-683E"},
    {32818, "Creates a new MLPL File.\nNew MLPL"},
    {32822, "Creates a new OPLMN File\nNew OPLMN"},
    {32823, "Creates a new UPLMN File\nNew UPLMN"},
    {32830, "Creates a new EHPLMN File\nNew EHPLMN"},
    {32850, "Creates a new Bst3Gpp File\nNew BST3GPP"},
    {32853, "Creates a new Technology Order File\nNew TECHORDER"},
    {32855, "Creates a new LTE Available File\nNew LAF"},
    {57344, "Tarn Roaming List Editor"},
    {61449, "At least one gap was detected between type specific fields in record %d of the ACQ table. "},
    {61450, "Invalid Subnet Address in column %d, row %d of the %s. The Subnet Address format should be in IPV6."},
    {61451, "Invalid Subnet Length in column %d, row %d of the %s. The Subnet Address format should be in IPV6."},
    {61453, "Invalid MCC in column %d, row %d of the %s. The MCC format should be three decimal digits."},
    {61455, "Invalid Association Tag value (greater than 255) in row %d of the %s."},
    {61456, "Unable to convert file from IS-683A to IS-683A+1xEV."},
    {61457, "The Roaming List file is not a recognized format."},
    {61458, "Invalid MNC in column %d, row %d of the %s. The MNC format should be two or three decimal digits and/or wildcards ('F')."},
    {61459, "Invalid IMSI in column %d, row %d of the %s. The IMSI format should be two decimal digits."},
    {61460, "The value you entered for the SID in column %d, row %d of the %s is reserved for the 1x-MCC system record type. Please enter a different value."},
    {61461, "Version input is not supported."},
};

const Entry* Find(unsigned id) {
    auto it = std::lower_bound(std::begin(kEntries), std::end(kEntries), id,
                               [](const Entry& e, unsigned key) { return e.id < key; });
    return (it != std::end(kEntries) && it->id == id) ? it : nullptr;
}

std::string FormatOne(std::string_view conversion, char conv, const MessageArg& a) {
    const auto& arg = a.value();
    std::string fmt(conversion);
    if (std::holds_alternative<std::string>(arg)) {
        const std::string& s = std::get<std::string>(arg);
        if (conv == 's') return s;
        // A text where a number is expected is shown as written rather than reinterpreted.
        return s;
    }
    long long v = std::get<long long>(arg);
    char buf[64];
    if (conv == 's') return std::to_string(v);
    std::string f = fmt.substr(0, fmt.size() - 1);
    if (conv == 'd' || conv == 'i') {
        f += "lld";
        std::snprintf(buf, sizeof buf, f.c_str(), v);
    } else {
        f += (conv == 'X') ? "llX" : (conv == 'x') ? "llx" : "llu";
        // %u of a negative int shows its 32-bit unsigned form, as the C runtime would.
        unsigned long long u = v < 0 ? static_cast<unsigned long long>(static_cast<unsigned>(v))
                                     : static_cast<unsigned long long>(v);
        std::snprintf(buf, sizeof buf, f.c_str(), u);
    }
    return buf;
}

}  // namespace

std::string_view MessageText(unsigned id) {
    const Entry* e = Find(id);
    return e ? e->text : std::string_view{};
}

bool HasMessage(unsigned id) { return Find(id) != nullptr; }

std::string FormatText(std::string_view format, std::initializer_list<MessageArg> args) {
    std::string out;
    out.reserve(format.size() + 32);
    auto next = args.begin();
    for (size_t i = 0; i < format.size(); ++i) {
        char c = format[i];
        if (c != '%') {
            out += c;
            continue;
        }
        if (i + 1 < format.size() && format[i + 1] == '%') {
            out += '%';
            ++i;
            continue;
        }
        size_t j = i + 1;
        while (j < format.size() && (format[j] == '0' || format[j] == '-' ||
                                     (format[j] >= '1' && format[j] <= '9')))
            ++j;
        while (j < format.size() && (format[j] == 'l' || format[j] == 'h')) ++j;
        if (j >= format.size() || std::string_view("diuxXs").find(format[j]) == std::string_view::npos ||
            next == args.end()) {
            out += c;
            continue;
        }
        // Length modifiers are dropped: every number is carried as a long long.
        std::string conversion;
        for (size_t k = i; k < j; ++k)
            if (format[k] != 'l' && format[k] != 'h') conversion += format[k];
        conversion += format[j];
        out += FormatOne(conversion, format[j], *next++);
        i = j;
    }
    return out;
}

std::string FormatMessage(unsigned id, std::initializer_list<MessageArg> args) {
    return FormatText(MessageText(id), args);
}

}  // namespace Tarn
