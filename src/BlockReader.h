#pragma once

class QByteArray;
class QFile;

enum class BlockResult {
    Whole,    // read to its end, checksum included
    NoBlock,  // none there, a damaged or unreadable one, or one beyond the bound
    NoMemory, // the block may be all right
};

/// Reads the compressed block that the open \a file holds into \a block, which is left alone
/// unless the result is Whole. Whatever the file says, no more memory is taken than \a maxLength
/// bytes and half a MiB.
BlockResult ReadBlock(QFile& file, int maxLength, QByteArray& block);
