// Status codes the engine returns, numbered as the record manager numbers them
// so that callers written against the record manager keep their meaning.
#pragma once

#include <string_view>

namespace recman {

enum class Status : int {
    Success = 0,
    InvalidOperation = 1,       // operation not possible on this file or in this state
    IoError = 2,                // read/write failure or inconsistent file structure
    FileNotOpen = 3,            // operation on a File that is not open
    KeyNotFound = 4,            // get-equal found no record with that key
    DuplicateKey = 5,           // insert/update would duplicate a unique key
    InvalidKeyNumber = 6,       // key number out of range
    DifferentKeyNumber = 7,     // get-next/previous on another key than the one positioned on
    InvalidPositioning = 8,     // no current record for next/previous/update/delete
    EndOfFile = 9,              // nothing further in that direction
    ModifiableKeyError = 10,    // update changes a key that is not modifiable
    InvalidFileName = 11,       // empty or unusable path
    FileNotFound = 12,          // no file at that path
    DataBufferTooShort = 22,    // caller's buffer or record shorter than needed
    CreateIoError = 25,         // a new file could not be written
    InvalidKeyLength = 29,      // key value or key definition of the wrong length
    NotARecordManagerFile = 30, // unknown signature, bad page size, unsupported format
    AccessDenied = 46,          // write refused: read-only open or unsafe on this file
    OwnerNameRequired = 51,     // owner-protected file whose data is encrypted
    FileAlreadyExists = 59,     // create would overwrite an existing file
    Conflict = 80,              // the record changed on disk since it was read; nothing written
    RecordInUse = 84,           // record locked by another process
    FileInUse = 85,             // file locked by another process
};

// Short English meaning of a status, e.g. "end of file".
std::string_view statusText(Status status);

inline int statusNumber(Status status)
{
    return static_cast<int>(status);
}

} // namespace recman
