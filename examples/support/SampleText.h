#pragma once

#include <CQSString.h>

#include <string>

/// The string's bytes, also for a string without a buffer.
inline std::string Bytes(const CQSString& text)
{
    return text.IsEmpty() ? std::string()
                          : std::string(text.GetDataPtr(), size_t(text.GetLength()));
}

inline CQSString FromBytes(const std::string& bytes)
{
    CQSString text;
    text.AppendData(bytes.c_str());
    return text;
}

/// Equality as the samples mean it: two empty strings are equal, which CQSString's operator
/// denies.
inline bool SameText(const CQSString& left, const CQSString& right)
{
    return Bytes(left) == Bytes(right);
}
