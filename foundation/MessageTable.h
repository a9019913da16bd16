// The numbered texts of the system: one table for the core, the command line and the editor.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>

namespace Tarn {

// Ids of the texts the code raises by number. The numbers are the contract: they are what a
// GridError or a message box carries, and the tests look texts up by them.
namespace Msg {
inline constexpr unsigned MainFrameTitle = 128;
inline constexpr unsigned TemplateRoamingList = 129;
inline constexpr unsigned ChangeTypeLosesRecords = 130;
inline constexpr unsigned NoAcqRecordsInFile = 132;
inline constexpr unsigned NoSystemSettingView = 133;
inline constexpr unsigned NoSystemRecordView = 134;
inline constexpr unsigned NoAcqRecordView = 135;
inline constexpr unsigned NoDocument = 138;
inline constexpr unsigned OutOfRange = 139;
inline constexpr unsigned RequiredValueMissing = 140;
inline constexpr unsigned TypeDiffersDocView = 143;
inline constexpr unsigned ErrorSavingAcq = 144;
inline constexpr unsigned ErrorSavingSys = 145;
inline constexpr unsigned NoSysRecordsInFile = 146;
inline constexpr unsigned FileInvalid = 148;
inline constexpr unsigned ErrorWritingFile = 151;
inline constexpr unsigned ErrorConverting = 152;
inline constexpr unsigned MustBeEven = 153;
inline constexpr unsigned NeedOneSysRecord = 154;
inline constexpr unsigned NeedOneAcqRecord = 155;
inline constexpr unsigned InvalidAcqIndex = 156;
inline constexpr unsigned ChannelGap = 157;
inline constexpr unsigned ReadOnlyNoConvert = 158;
inline constexpr unsigned DefaultRoamIndRange = 160;
inline constexpr unsigned PrefListIdRange = 161;
inline constexpr unsigned CannotRenderText = 162;
inline constexpr unsigned AcqIndexIs2000 = 163;
inline constexpr unsigned SaveBeforeConvert = 166;
inline constexpr unsigned AcqIndexIs856 = 167;
inline constexpr unsigned AcqIndexPlmn = 196;
inline constexpr unsigned AcqIndexUndefined = 197;
inline constexpr unsigned EmptyRows = 198;
inline constexpr unsigned TemplateText = 199;
inline constexpr unsigned InvalidSsprPRev = 200;
inline constexpr unsigned UmbGap = 202;
inline constexpr unsigned AcqIndexMccMncSidNid = 204;
inline constexpr unsigned AcqIndexMccMncSubnet = 205;
inline constexpr unsigned BadSubnetId = 206;
inline constexpr unsigned TemplateMspl = 207;
inline constexpr unsigned NoMsplRecordsInFile = 208;
inline constexpr unsigned TemplateMlpl = 209;
inline constexpr unsigned TemplatePlmn = 210;
inline constexpr unsigned NoMlplRecordsInFile = 211;
inline constexpr unsigned NeedOnePlmnRecord = 212;
inline constexpr unsigned ErrorSavingPlmn = 213;
inline constexpr unsigned ErrorSavingMspl = 214;
inline constexpr unsigned NeedOneMsplRecord = 215;
inline constexpr unsigned ErrorSavingMlpl = 216;
inline constexpr unsigned NeedOneMlplRecord = 217;
inline constexpr unsigned MccTabRange = 218;
inline constexpr unsigned MncTabRange = 219;
inline constexpr unsigned NoPlmnRecordsInFile = 220;
inline constexpr unsigned MsplIndexTabRange = 221;
inline constexpr unsigned TemplateBst3Gpp = 222;
inline constexpr unsigned TemplateTot = 224;
inline constexpr unsigned NoTotRecordsInFile = 225;
inline constexpr unsigned NeedOneTotRecord = 226;
inline constexpr unsigned ErrorSavingTot = 227;
inline constexpr unsigned NoBstRecordsInFile = 228;
inline constexpr unsigned NeedOneBstRecord = 229;
inline constexpr unsigned ErrorSavingBst = 230;
inline constexpr unsigned RedundantRatIds = 231;
inline constexpr unsigned MccTabNotThreeDigits = 232;
inline constexpr unsigned MncTabDigits = 233;
inline constexpr unsigned TemplateLaf = 234;
inline constexpr unsigned HintDecimal65535 = 235;
inline constexpr unsigned SidNotNumeric = 236;
inline constexpr unsigned NidNotNumeric = 237;
inline constexpr unsigned BidNotNumeric = 238;
inline constexpr unsigned CntNotNumeric = 239;
inline constexpr unsigned HintDecimal255 = 240;
inline constexpr unsigned NeedOneLafRecord = 241;
inline constexpr unsigned TypeSpecificGap = 61449;
inline constexpr unsigned InvalidSubnetAddress = 61450;
inline constexpr unsigned InvalidSubnetLength = 61451;
inline constexpr unsigned InvalidMcc = 61453;
inline constexpr unsigned InvalidAssnTag = 61455;
inline constexpr unsigned UnableToConvert1xEV = 61456;
inline constexpr unsigned NotRecognizedFormat = 61457;
inline constexpr unsigned InvalidMnc = 61458;
inline constexpr unsigned InvalidImsi = 61459;
inline constexpr unsigned ReservedSid = 61460;
inline constexpr unsigned VersionNotSupported = 61461;
inline constexpr unsigned MainFrameTitleAlt = 57344;
}  // namespace Msg

// One printf-style argument of a numbered text: any integer or any text.
class MessageArg {
public:
    template <typename T>
        requires std::is_integral_v<T>
    MessageArg(T v) : value_(static_cast<long long>(v)) {}
    MessageArg(std::string s) : value_(std::move(s)) {}
    MessageArg(const char* s) : value_(std::string(s ? s : "")) {}
    MessageArg(std::string_view s) : value_(std::string(s)) {}
    const std::variant<long long, std::string>& value() const { return value_; }

private:
    std::variant<long long, std::string> value_;
};

// The raw text of a numbered entry; an id with no entry gives an empty text.
std::string_view MessageText(unsigned id);

// True when the table holds an entry for `id`.
bool HasMessage(unsigned id);

// Fills the conversions of `format` (%d, %u, %s, %X with optional zero padding and width, and %%)
// from `args` in order. A conversion with no argument left is copied as written, so a text is
// never cut short by a missing argument.
std::string FormatText(std::string_view format, std::initializer_list<MessageArg> args);

// The numbered text with its arguments filled.
std::string FormatMessage(unsigned id, std::initializer_list<MessageArg> args = {});

}  // namespace Tarn
