#pragma once

#include <QString>

#include <optional>
#include <vector>

/// The kinds of items in a data stream. Counts and lengths of type int, short or char come first
/// in the stream.
enum class ItemKind { Int, UInt, Short, UShort, Char, Byte, Bytes, Text, Repeat };

/// One item of a `--items` list.
struct Item {
    ItemKind kind = ItemKind::Int;
    QString name;                    ///< As it was written, without what stands in parentheses.
    std::optional<ItemKind> counter; ///< Text and Repeat: the type of the count before them.
    qint64 count = -1;               ///< Bytes, Text, Repeat: a fixed count; -1 is none.
    std::vector<Item> items;         ///< Repeat: what is repeated.
};

/// Parses a list such as "int,text:int,bytes:16,repeat(int,short)". Throws a UsageError that
/// tells where it stops making sense.
std::vector<Item> ParseItems(const QString& list);
