#include "openfile.h"

namespace recman {

Status updateRecord(File::Impl &, std::uint32_t, Bytes, std::string &message)
{
    message = "not yet";
    return Status::AccessDenied;
}
Status insertRecord(File::Impl &, Bytes, std::uint32_t &, std::string &message)
{
    message = "not yet";
    return Status::AccessDenied;
}
Status deleteRecord(File::Impl &, std::uint32_t, std::string &message)
{
    message = "not yet";
    return Status::AccessDenied;
}

} // namespace recman
