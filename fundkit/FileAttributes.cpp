#include "fundkit/FileAttributes.h"

#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>

namespace tunadm {
namespace {

constexpr const char* kAccessList = "system.posix_acl_access";
constexpr mode_t kNewFileMode = 0644;
constexpr mode_t kPermissionBits = 0777;
constexpr mode_t kGroupBits = 0070;

// These belong to the content: a signature of the old one would lock the new one out.
bool describesContent(std::string_view attribute) {
  constexpr std::string_view kOfContent[] = {"security.ima", "security.evm", "security.capability"};
  return std::find(std::begin(kOfContent), std::end(kOfContent), attribute) != std::end(kOfContent);
}

bool copyAttribute(int from, const char* name, int to) {
  const ssize_t size = fgetxattr(from, name, nullptr, 0);
  if (size < 0) return false;
  std::string value(static_cast<std::size_t>(size), '\0');
  return fgetxattr(from, name, value.data(), value.size()) == size &&
         fsetxattr(to, name, value.data(), value.size(), 0) == 0;
}

// False when the access of the group and of others named in an ACL may differ afterwards.
bool keepExtendedAttributes(int from, int to) {
  const ssize_t size = flistxattr(from, nullptr, 0);
  if (size < 0) return errno == ENOTSUP;
  std::string names(static_cast<std::size_t>(size), '\0');
  if (flistxattr(from, names.data(), names.size()) != size) return false;
  bool has_list = false;
  bool kept = true;
  for (const char* name = names.c_str(); *name != '\0'; name += std::strlen(name) + 1) {
    if (describesContent(name)) continue;
    const bool copied = copyAttribute(from, name, to);
    if (std::string_view(name) != kAccessList) continue;  // as far as possible
    has_list = true;
    kept = copied;
  }
  // The directory may have given the new file an ACL that the old one did not have.
  if (!has_list) (void)fremovexattr(to, kAccessList);
  return kept;
}

// False when the file keeps the caller's group.
bool keepOwners(int file, const struct stat& replaced) {
  struct stat own {};
  if (fstat(file, &own) != 0) return false;
  if (own.st_uid == replaced.st_uid && own.st_gid == replaced.st_gid) return true;
  return fchown(file, replaced.st_uid, replaced.st_gid) == 0 || own.st_gid == replaced.st_gid ||
         fchown(file, own.st_uid, replaced.st_gid) == 0;
}

}  // namespace

mode_t callersUmask() {
  const mode_t mask = umask(0);
  umask(mask);  // it can be read only by setting it
  return mask;
}

bool takeOverAttributes(int file, int replaced, std::optional<mode_t> mode) {
  mode_t bits = kNewFileMode;
  if (replaced >= 0) {
    struct stat found {};
    if (fstat(replaced, &found) != 0) return false;
    const bool group_kept = keepOwners(file, found);
    const bool list_kept = keepExtendedAttributes(replaced, file);
    bits = found.st_mode & kPermissionBits;
    if (!group_kept || !list_kept) bits &= ~kGroupBits;
  }
  // Last, since a change of the owner or of the ACL changes the bits.
  return fchmod(file, mode ? *mode : bits & ~callersUmask()) == 0;
}

}  // namespace tunadm
