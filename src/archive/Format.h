// The on-disk form of an archive: a ".img" data file of 2048-byte sectors and
// a ".dir" directory file of 32-byte records (start sector, size in sectors,
// 24-byte name). Every rule about those bytes lives here so that adding,
// replacing, rebuilding, the reports and the command line all agree.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace korvel {

inline constexpr std::uint64_t SectorSize = 2048;
inline constexpr std::size_t RecordSize = 32;
inline constexpr std::size_t NameFieldSize = 24;
// The record count is held in a signed 16-bit number, so a directory lists
// at most this many entries.
inline constexpr std::size_t MaxRecords = 32767;
// The separator entry: 24 hyphens.
inline constexpr std::string_view MarkerName = "------------------------";

// One directory record. The name is kept as its raw 8-bit bytes (Windows-1252),
// without the zero padding.
struct DirRecord {
    std::uint32_t startSector = 0;
    std::uint32_t sizeSectors = 0;
    std::string name;
};

// Sectors a stored file of `byteCount` bytes takes: the smallest multiple of
// 2048 strictly greater than the size, so there is always at least one zero
// byte of padding (an empty file takes one sector).
std::uint64_t SectorsForFile(std::uint64_t byteCount);

// Byte offset of a sector. 64-bit, so data files past 2 GiB work.
constexpr std::uint64_t SectorToOffset(std::uint32_t sector) {
    return std::uint64_t{sector} * SectorSize;
}

// The texts the list shows: upper-case hex of the byte offset without leading
// zeros ("0" for 0), and kilobytes (sectors x 2) followed by "kb".
std::string OffsetText(std::uint32_t startSector);
std::string SizeText(std::uint32_t sizeSectors);

// Number of records a directory file of `byteLength` bytes lists: length / 32
// rounded to the nearest whole number, halves to even. A result above
// MaxRecords means the file cannot be opened.
std::uint64_t RecordCountForLength(std::uint64_t byteLength);

// Decodes a directory file's bytes. A last record of which only part is present
// (the count rule rounds it up) reads its missing bytes as zeros; trailing bytes
// that the count rule rounds away are ignored.
std::vector<DirRecord> DecodeDirectory(std::string_view bytes);

// Encodes records as 32-byte records. Names longer than 24 bytes are cut.
std::string EncodeDirectory(const std::vector<DirRecord>& records);

// Name bytes as stored in a record: everything before the first zero byte of
// the 24-byte field.
std::string NameFromField(const char* field);

// The two kinds of archive. A two-file archive (GTA III, Vice City) keeps its
// directory in a ".dir" file beside the data file. A one-file archive (San
// Andreas, "VER2") keeps it at the start of the data file: the four bytes
// "VER2", the record count (unsigned 32-bit, little-endian), then one 32-byte
// record per entry: start sector (32 bits), size in sectors as streamed (16
// bits), size as stored (16 bits, 0 meaning "the same"), 24-byte name. The
// entries' data starts at the first sector after the records.
enum class ArchiveKind { TwoFile, OneFile };

inline constexpr std::string_view OneFileMagic = "VER2";
inline constexpr std::size_t OneFileHeaderSize = 8;
// A one-file record holds an entry's size in 16 bits: at most this many
// sectors (128 MiB less one sector).
inline constexpr std::uint32_t MaxOneFileEntrySectors = 0xFFFF;

// The kind of archive whose data file begins with `firstBytes` (at least the
// first four bytes, when the file has them).
ArchiveKind ArchiveKindOf(std::string_view firstBytes);

// Bytes of a one-file archive's header and `recordCount` records.
constexpr std::uint64_t OneFileRecordAreaBytes(std::uint64_t recordCount) {
    return OneFileHeaderSize + recordCount * RecordSize;
}

// The first sector an entry's data may use in a one-file archive of
// `recordCount` records: the record area rounded up to whole sectors.
constexpr std::uint64_t OneFileFirstDataSector(std::uint64_t recordCount) {
    return (OneFileRecordAreaBytes(recordCount) + SectorSize - 1) / SectorSize;
}

// The record count a one-file header states; nothing when `header` is shorter
// than the header or does not begin with "VER2".
std::optional<std::uint32_t> OneFileRecordCount(std::string_view header);

// Decodes the records that follow a one-file header: whole 32-byte records
// only (the caller checks the count against the bytes there). An entry's
// size is its streamed size, or its stored size when only that is given.
std::vector<DirRecord> DecodeOneFileRecords(std::string_view recordBytes);

// Encodes the header and records of a one-file archive. Every size must fit
// in 16 bits (callers refuse larger entries before anything is written);
// names longer than a record holds are cut.
std::string EncodeOneFileRecordArea(const std::vector<DirRecord>& records);

// Path of the directory file that belongs to a data file. The classic rule is
// "lower-case the path and replace every .img by .dir"; that only works on a
// case-insensitive file system. On a case-sensitive one we keep the folder as
// it is and look, in order, for: the data file's name with its extension
// swapped for ".dir" in the same letter case, the classic lower-cased name, and
// any file in the folder matching either ignoring case. When none exists the
// first candidate is returned (it is the name a new archive gets). The data
// file itself is never a candidate that exists; for a name without ".img" the
// result can still name the data file, which callers must refuse.
std::filesystem::path DirectoryPathFor(const std::filesystem::path& dataPath);

// True when the name ends in ".img", ignoring case.
bool HasImgExtension(std::string_view name);

} // namespace korvel
