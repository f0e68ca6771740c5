// The wide string alone; StringModel.h has what it shares with the byte string.

#include "StringModel.h"

#include <QString>

namespace
{

bool IsPairAt(const std::wstring& text, std::size_t i)
{
    return i + 1 < text.size() && QChar::isHighSurrogate(static_cast<char32_t>(text[i])) &&
           QChar::isLowSurrogate(static_cast<char32_t>(text[i + 1]));
}

} // namespace

template <>
struct Rules<CQWString> {
    // The platform's mapping of the text between units that are no code point, which stay.
    static std::wstring MapCase(const std::wstring& text, bool upper)
    {
        std::wstring mapped;
        QString run;
        const auto flush = [&] {
            mapped += (upper ? run.toUpper() : run.toLower()).toStdWString();
            run.clear();
        };
        for (std::size_t i = 0; i < text.size(); ++i) {
            const auto unit = static_cast<char32_t>(text[i]);
            if (IsPairAt(text, i)) {
                run += QChar(static_cast<char16_t>(unit));
                run += QChar(static_cast<char16_t>(text[++i]));
            } else if (unit > 0x10FFFF || QChar::isSurrogate(unit)) {
                flush();
                mapped += text[i];
            } else {
                run += unit > 0xFFFF ? QString::fromUcs4(&unit, 1)
                                     : QString(QChar(static_cast<char16_t>(unit)));
            }
        }
        flush();
        mapped.resize(text.size());
        return mapped;
    }

    static std::vector<char32_t> Folded(const std::wstring& text)
    {
        std::vector<char32_t> folded;
        for (std::size_t i = 0; i < text.size(); ++i) {
            auto unit = static_cast<char32_t>(text[i]);
            if (IsPairAt(text, i)) {
                unit = QChar::surrogateToUcs4(static_cast<char16_t>(unit),
                                              static_cast<char16_t>(text[++i]));
            }
            folded.push_back(unit > 0x10FFFF ? unit : QChar::toCaseFolded(unit));
        }
        return folded;
    }

    static bool EqualFolded(const std::wstring& a, const std::wstring& b)
    {
        return Folded(a) == Folded(b);
    }

    static std::size_t Digit(wchar_t c)
    {
        return c > 'f' ? 99 : c == 0 ? 99 : HexDigits.find(static_cast<char>(Upper(c)));
    }

    // Of the digits at the end.
    static unsigned Hex(const std::wstring& text)
    {
        unsigned value = 0, place = 1;
        for (std::size_t i = text.size(); i > 0 && Digit(text[i - 1]) < 16; --i, place *= 16) {
            value += static_cast<unsigned>(Digit(text[i - 1])) * place;
        }
        return text[0] == '-' ? 0 - value : value;
    }

    // Every unit takes a place, and foreign ones count 0.
    static unsigned NumberInBase(const std::wstring& text, int base)
    {
        unsigned value = 0;
        for (const wchar_t c : text) {
            value = value * static_cast<unsigned>(base) +
                    static_cast<unsigned>(Digit(c) < 16 ? Digit(c) : 0);
        }
        return value;
    }
};

template <>
Operations Step<CQWString>::Own()
{
    const int room = few * (keepStart ? 16 : 1);
    return {
        [this] { MODEL_CHECK(s.SetData(a.p, count) == r.SetCounted(counted)); },
        [=, this] {
            const bool isRoom = Asserted<wchar_t>(room >= 0, "nLen >= 0");
            MODEL_CHECK(s.PrepareBufferToWrite(room) == (r.MakeRoom(Clip(room)) ? 1 : 0));
            isRoom&& room == 0 ? r.Release() : void();
        },
        [this] {
            // The new buffer may lie where the old one was.
            const wchar_t* const before = s.GetDataPtr();
            s.AllocBuffer(few);
            const int changes = r.changes + (s.GetDataPtr() == before ? 0 : 1);
            few < 0 ? void() : void(r = {std::wstring(Clip(few), L'\0'), 0, few > 0, changes});
        },
        [this] {
            const CQWString made(few);
            Check(made, {std::wstring(Clip(few), L'\0'), 0, few > 0, 0});
        },
        [this] { s.Destroy(), r.Release(); },
        [this] {
            s.SetStrEnding(few);
            if (r.hasBuffer && few >= 0 &&
                Asserted<wchar_t>(r.held.size() >= Clip(few), "nLen >= 0&& m_nMAXLen >= nLen")) {
                r.held[Clip(few)] = 0;
                r.length = few;
            }
        },
        [this] { MODEL_CHECK(s.FindofLast(c) == Index(text.rfind(c))); },
        [this] {
            const int hits = a.text.empty() ? 0 : Replace(r, a.text, {});
            MODEL_CHECK(s.DeleteSubString(a.p) == hits);
        },
        [this] {
            const int value = static_cast<int>(number);
            MODEL_CHECK(s.AppendNum(value) ==
                        r.Set(text + Widened<wchar_t>(std::to_string(value))));
        },
        [this] {
            const QString hex = QString::number(number, 16).toUpper();
            s.ToStringEx(number), r.Set(hex.toStdWString());
        },
        [this] {
            MODEL_CHECK(text.empty() || s.ToNum(CQWString::enHexNum) == s.ToHEX());
            MODEL_CHECK(text.empty() || s.ToNum(CQWString::enDecNum) == s.ToINT());
            MODEL_CHECK(s.ToNum(static_cast<CQWString::enNumType>(2)) == -1);
        },
        [this] {
            const bool isNumber = HasNumber(r) && few >= 2;
            MODEL_CHECK(
                s.ToINT(static_cast<short>(few)) ==
                (isNumber ? static_cast<int>(Rules<CQWString>::NumberInBase(text, few)) : -1));
        },
    };
}

void DriveModel(ByteSource& source)
{
    DriveStrings<CQWString>(source);
}
