#include "status.h"

namespace recman {

std::string_view statusText(Status status)
{
    switch (status) {
    case Status::Success:
        return "success";
    case Status::InvalidOperation:
        return "invalid operation";
    case Status::IoError:
        return "I/O error or inconsistent file structure";
    case Status::FileNotOpen:
        return "file not open";
    case Status::KeyNotFound:
        return "key value not found";
    case Status::DuplicateKey:
        return "duplicate key value";
    case Status::InvalidKeyNumber:
        return "invalid key number";
    case Status::DifferentKeyNumber:
        return "different key number";
    case Status::InvalidPositioning:
        return "invalid positioning (no current record)";
    case Status::EndOfFile:
        return "end of file";
    case Status::ModifiableKeyError:
        return "key value not modifiable";
    case Status::InvalidFileName:
        return "invalid file name";
    case Status::FileNotFound:
        return "file not found";
    case Status::DataBufferTooShort:
        return "data buffer too short";
    case Status::CreateIoError:
        return "file create I/O error";
    case Status::InvalidKeyLength:
        return "invalid key length";
    case Status::NotARecordManagerFile:
        return "not a readable record-manager file";
    case Status::AccessDenied:
        return "access to file denied";
    case Status::OwnerNameRequired:
        return "owner name required";
    case Status::FileAlreadyExists:
        return "file already exists";
    case Status::Conflict:
        return "record conflict (changed by another user since it was read)";
    case Status::RecordInUse:
        return "record in use (locked)";
    case Status::FileInUse:
        return "file in use (locked)";
    }
    return "unknown status";
}

} // namespace recman
