// SPDX-License-Identifier: MIT
// The table of file system types.
#include "platform/posix/FileSystemKinds.h"

#include "platform/SystemConstants.h"

namespace quillmarsh {
namespace {

struct Row {
  std::string_view type;
  FileSystemKind kind;
};

constexpr FileSystemKind Disk = {true, true, false, DRIVE_FIXED, true};
constexpr FileSystemKind FoldingDisk = {true, true, true, DRIVE_FIXED, true};
constexpr FileSystemKind StackedDisk = {true, true, false, DRIVE_FIXED};
constexpr FileSystemKind Disc = {true, true, false, DRIVE_CDROM, true};
constexpr FileSystemKind Memory = {true, true, false, DRIVE_RAMDISK, true};
constexpr FileSystemKind Network = {true, false, false, DRIVE_REMOTE};
constexpr FileSystemKind FoldingNetwork = {true, false, true, DRIVE_REMOTE};
constexpr FileSystemKind FuseDisk = {true, false, false, DRIVE_FIXED};
// Only ever met as the root of a container or a live system.
constexpr FileSystemKind SystemImage = {false, true, false, DRIVE_FIXED};
constexpr FileSystemKind MemoryImage = {false, true, false, DRIVE_RAMDISK, true};
constexpr FileSystemKind Service = {false, false, false, DRIVE_UNKNOWN};

constexpr Row Table[] = {
    {"ext2", Disk},
    {"ext3", Disk},
    {"ext4", Disk},
    {"xfs", Disk},
    {"btrfs", Disk},
    {"bcachefs", Disk},
    {"f2fs", Disk},
    {"jfs", Disk},
    {"nilfs2", Disk},
    {"reiserfs", Disk},
    {"zfs", Disk},
    {"ufs", Disk},
    {"minix", Disk},
    {"ntfs", Disk},
    {"ntfs3", Disk},
    {"ecryptfs", StackedDisk},
    {"vfat", FoldingDisk},
    {"msdos", FoldingDisk},
    {"exfat", FoldingDisk},
    {"hfs", FoldingDisk},
    {"affs", FoldingDisk},
    {"hfsplus", FoldingDisk},
    {"apfs", FoldingDisk},
    {"iso9660", Disc},
    {"udf", Disc},
    {"tmpfs", Memory},
    {"nfs", Network},
    {"nfs4", Network},
    {"afs", Network},
    {"ceph", Network},
    {"gfs2", Network},
    {"ocfs2", Network},
    {"lustre", Network},
    {"9p", Network},
    {"virtiofs", Network},
    {"vboxsf", Network},
    {"cifs", FoldingNetwork},
    {"smb3", FoldingNetwork},
    {"smbfs", FoldingNetwork},
    {"ncpfs", FoldingNetwork},
    {"fuseblk", FuseDisk},
    {"fuse", Network},
    {"overlay", SystemImage},
    {"aufs", SystemImage},
    {"squashfs", SystemImage},
    {"erofs", SystemImage},
    {"rootfs", SystemImage},
    {"ramfs", MemoryImage},
    {"fuse.portal", Service},
    {"fuse.lxcfs", Service},
    {"fuse.snapfuse", Service},
};

}  // namespace

FileSystemKind KindOfFileSystem(std::string_view type) {
  for (const Row& row : Table)
    if (row.type == type) return row.kind;
  return type.starts_with("fuse.") ? Network : Service;
}

}  // namespace quillmarsh
