// The wide string alone; StringModel.h has what it shares with the byte string.

#include "StringModel.h"

#include <QString>

template <>
struct Rules<CQWString> {
    // A surrogate pair is one character.
    static std::u32string Joined(const std::wstring& text)
    {
        std::u32string joined;
        for (const wchar_t c : text) {
            const auto unit = static_cast<char32_t>(c);
            if (!joined.empty() && QChar::isHighSurrogate(joined.back()) &&
                QChar::isLowSurrogate(unit)) {
                joined.back() = QChar::surrogateToUcs4(static_cast<char16_t>(joined.back()),
                                                       static_cast<char16_t>(unit));
            } else {
                joined += unit;
            }
        }
        return joined;
    }

    // What is no code point stays.
    static std::wstring MapCase(const std::wstring& text, bool upper)
    {
        std::wstring mapped;
        for (const char32_t c : Joined(text)) {
            const bool isKnown = c <= 0x10FFFF && !QChar::isSurrogate(c);
            const QString known = QString::fromUcs4(&c, isKnown ? 1 : 0);
            mapped += isKnown ? (upper ? known.toUpper() : known.toLower()).toStdWString()
                              : std::wstring(1, static_cast<wchar_t>(c));
        }
        mapped.resize(text.size());
        return mapped;
    }

    static bool EqualFolded(const std::wstring& a, const std::wstring& b)
    {
        const std::u32string x = Joined(a), y = Joined(b);
        const auto fold = [](char32_t c) { return c > 0x10FFFF ? c : QChar::toCaseFolded(c); };
        return std::equal(x.begin(), x.end(), y.begin(), y.end(),
                          [=](char32_t c, char32_t d) { return fold(c) == fold(d); });
    }

    static unsigned Hex(const std::wstring& text)
    {
        const unsigned value = TrailingNumber(text, 16);
        return text[0] == '-' ? 0 - value : value;
    }

    // Every unit takes a place, and foreign ones count 0.
    static unsigned NumberInBase(const std::wstring& text, unsigned base)
    {
        unsigned value = 0;
        for (const wchar_t c : text) {
            value = value * base + (Digit(c) < 16 ? Digit(c) : 0);
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
            const bool isRoom = Asserted(room >= 0, "nLen >= 0");
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
        [this] {
            // What a client wrote at the length goes too.
            r.hasBuffer ? void(const_cast<wchar_t*>(s.GetDataPtr())[r.length] = c) : void();
            s.Empty(), r.Empty();
        },
        [this] { s.Destroy(), r.Release(); },
        [this] {
            s.SetStrEnding(few);
            if (r.hasBuffer && few >= 0 &&
                Asserted(r.held.size() >= Clip(few), "nLen >= 0&& m_nMAXLen >= nLen")) {
                r.held[Clip(few)] = 0;
                r.length = few;
            }
        },
        [this] { MODEL_CHECK(s.FindofLast(c) == Index(text.rfind(c))); },
        [this] {
            MODEL_CHECK(s.DeleteSubString(a.p) == (a.text.empty() ? 0 : Replace(a.text, {})));
        },
        [this] {
            const int value = static_cast<int>(number);
            MODEL_CHECK(s.AppendNum(value) == Append(std::to_wstring(value)));
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
            const auto base = static_cast<short>(few);
            const unsigned value = Rules<CQWString>::NumberInBase(text, static_cast<unsigned>(few));
            MODEL_CHECK(s.ToINT(base) == (HasNumber() && base >= 2 ? static_cast<int>(value) : -1));
        },
    };
}

void DriveModel(ByteSource& source)
{
    DriveStrings<CQWString>(source);
}
