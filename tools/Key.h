#pragma once

#include <array>

class CQSString;
class QCommandLineParser;
class QString;

using Key = std::array<unsigned char, 16>;

/// The key that the client derives from a number (32 bits, signed or unsigned) and a text.
Key DeriveKey(const QString& number, const QString& text);

/// 32 hexadecimal digits, lower case.
QString HexText(const Key& key);

/// Declares the ways to name a key: `--key`, `--number` with `--text`, `--name-key`.
void DeclareKey(QCommandLineParser& parser);

/// True for `--name-key`, the program's own key for stored file names.
bool IsNameKey(const QCommandLineParser& parser);

/// The key of `--key` or of `--number` and `--text`; a UsageError unless exactly one way is given.
Key ParseKey(const QCommandLineParser& parser);
