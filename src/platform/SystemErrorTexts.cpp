// SPDX-License-Identifier: MIT
// The usual English texts of system error numbers, for machines whose system has none, in ascending
// order of the numbers.
#include <algorithm>
#include <iterator>

#include "platform/LocaleAndTime.h"

namespace quillmarsh {
namespace {

struct ErrorText {
  std::uint32_t code;
  TextView text;
};

constexpr ErrorText ErrorTexts[] = {
    {0, u"The operation completed successfully.\r\n"},
    {1, u"Incorrect function.\r\n"},
    {2, u"The system cannot find the file specified.\r\n"},
    {3, u"The system cannot find the path specified.\r\n"},
    {4, u"The system cannot open the file.\r\n"},
    {5, u"Access is denied.\r\n"},
    {6, u"The handle is invalid.\r\n"},
    {7, u"The storage control blocks were destroyed.\r\n"},
    {8, u"Not enough memory resources are available to process this command.\r\n"},
    {9, u"The storage control block address is invalid.\r\n"},
    {10, u"The environment is incorrect.\r\n"},
    {11, u"An attempt was made to load a program with an incorrect format.\r\n"},
    {12, u"The access code is invalid.\r\n"},
    {13, u"The data is invalid.\r\n"},
    {14, u"Not enough memory resources are available to complete this operation.\r\n"},
    {15, u"The system cannot find the drive specified.\r\n"},
    {16, u"The directory cannot be removed.\r\n"},
    {17, u"The system cannot move the file to a different disk drive.\r\n"},
    {18, u"There are no more files.\r\n"},
    {19, u"The media is write protected.\r\n"},
    {20, u"The system cannot find the device specified.\r\n"},
    {21, u"The device is not ready.\r\n"},
    {22, u"The device does not recognize the command.\r\n"},
    {23, u"Data error (cyclic redundancy check).\r\n"},
    {24, u"The program issued a command but the command length is incorrect.\r\n"},
    {25, u"The drive cannot locate a specific area or track on the disk.\r\n"},
    {26, u"The specified disk or diskette cannot be accessed.\r\n"},
    {27, u"The drive cannot find the sector requested.\r\n"},
    {28, u"The printer is out of paper.\r\n"},
    {29, u"The system cannot write to the specified device.\r\n"},
    {30, u"The system cannot read from the specified device.\r\n"},
    {31, u"A device attached to the system is not functioning.\r\n"},
    {32, u"The process cannot access the file because it is being used by another process.\r\n"},
    {33,
     u"The process cannot access the file because another process has locked a portion of the "
     u"file.\r\n"},
    {36, u"Too many files opened for sharing.\r\n"},
    {38, u"Reached the end of the file.\r\n"},
    {39, u"The disk is full.\r\n"},
    {50, u"The request is not supported.\r\n"},
    {51,
     u"Windows cannot find the network path. Verify that the network path is correct and the "
     u"destination computer is not busy or turned off. If Windows still cannot find the network "
     u"path, contact your network administrator.\r\n"},
    {53, u"The network path was not found.\r\n"},
    {54, u"The network is busy.\r\n"},
    {55, u"The specified network resource or device is no longer available.\r\n"},
    {59, u"An unexpected network error occurred.\r\n"},
    {64, u"The specified network name is no longer available.\r\n"},
    {65, u"Network access is denied.\r\n"},
    {67, u"The network name cannot be found.\r\n"},
    {80, u"The file exists.\r\n"},
    {82, u"The directory or file cannot be created.\r\n"},
    {87, u"The parameter is incorrect.\r\n"},
    {108, u"The disk is in use or locked by another process.\r\n"},
    {109, u"The pipe has been ended.\r\n"},
    {110, u"The system cannot open the device or file specified.\r\n"},
    {111, u"The file name is too long.\r\n"},
    {112, u"There is not enough space on the disk.\r\n"},
    {120, u"This function is not supported on this system.\r\n"},
    {121, u"The semaphore timeout period has expired.\r\n"},
    {122, u"The data area passed to a system call is too small.\r\n"},
    {123, u"The filename, directory name, or volume label syntax is incorrect.\r\n"},
    {126, u"The specified module could not be found.\r\n"},
    {127, u"The specified procedure could not be found.\r\n"},
    {130,
     u"Attempt to use a file handle to an open disk partition for an operation other than raw "
     u"disk I/O.\r\n"},
    {131, u"An attempt was made to move the file pointer before the beginning of the file.\r\n"},
    {132, u"The file pointer cannot be set on the specified device or file.\r\n"},
    {144, u"The directory is not a subdirectory of the root directory.\r\n"},
    {145, u"The directory is not empty.\r\n"},
    {148, u"The path specified cannot be used at this time.\r\n"},
    {158, u"The segment is already unlocked.\r\n"},
    {161, u"The specified path is invalid.\r\n"},
    {167, u"Unable to lock a region of a file.\r\n"},
    {170, u"The requested resource is in use.\r\n"},
    {183, u"Cannot create a file when that file already exists.\r\n"},
    {193, u"%1 is not a valid Win32 application.\r\n"},
    {206, u"The filename or extension is too long.\r\n"},
    {223, u"The file size exceeds the limit allowed and cannot be saved.\r\n"},
    {225,
     u"Operation did not complete successfully because the file contains a virus or potentially "
     u"unwanted software.\r\n"},
    {232, u"The pipe is being closed.\r\n"},
    {234, u"More data is available.\r\n"},
    {259, u"No more data is available.\r\n"},
    {267, u"The directory name is invalid.\r\n"},
    {288, u"Attempt to release mutex not owned by caller.\r\n"},
    {303, u"The file cannot be opened because it is in the process of being deleted.\r\n"},
    {995,
     u"The I/O operation has been aborted because of either a thread exit or an application "
     u"request.\r\n"},
    {998, u"Invalid access to memory location.\r\n"},
    {1001, u"Recursion too deep; the stack overflowed.\r\n"},
    {1004, u"Invalid flags.\r\n"},
    {1005,
     u"The volume does not contain a recognized file system. Please make sure that all required "
     u"file system drivers are loaded and that the volume is not corrupted.\r\n"},
    {1006,
     u"The volume for a file has been externally altered so that the opened file is no longer "
     u"valid.\r\n"},
    {1008, u"An attempt was made to reference a token that does not exist.\r\n"},
    {1110, u"The media in the drive may have changed.\r\n"},
    {1112, u"No media in drive.\r\n"},
    {1114, u"A dynamic link library (DLL) initialization routine failed.\r\n"},
    {1117, u"The request could not be performed because of an I/O device error.\r\n"},
    {1142,
     u"An attempt was made to create more links on a file than the file system supports.\r\n"},
    {1155, u"No application is associated with the specified file for this operation.\r\n"},
    {1167, u"The device is not connected.\r\n"},
    {1168, u"Element not found.\r\n"},
    {1200, u"The specified device name is invalid.\r\n"},
    {1222, u"The network is not present or not started.\r\n"},
    {1223, u"The operation was canceled by the user.\r\n"},
    {1224,
     u"The requested operation cannot be performed on a file with a user-mapped section open.\r\n"},
    {1231,
     u"The network location cannot be reached. For information about network troubleshooting, see "
     u"Windows Help.\r\n"},
    {1235, u"The request was aborted.\r\n"},
    {1300, u"Not all privileges or groups referenced are assigned to the caller.\r\n"},
    {1307, u"This security ID may not be assigned as the owner of this object.\r\n"},
    {1314, u"A required privilege is not held by the client.\r\n"},
    {1336, u"The access control list (ACL) structure is invalid.\r\n"},
    {1338, u"The security descriptor structure is invalid.\r\n"},
    {1392, u"The file or directory is corrupted and unreadable.\r\n"},
    {1393, u"The disk structure is corrupted and unreadable.\r\n"},
    {1400, u"Invalid window handle.\r\n"},
    {1450, u"Insufficient system resources exist to complete the requested service.\r\n"},
    {1460, u"This operation returned because the timeout period expired.\r\n"},
    {1812, u"The specified image file did not contain a resource section.\r\n"},
    {1813, u"The specified resource type cannot be found in the image file.\r\n"},
    {1814, u"The specified resource name cannot be found in the image file.\r\n"},
    {1816, u"Not enough quota is available to process this command.\r\n"},
    {1920, u"The file cannot be accessed by the system.\r\n"},
    {1921, u"The name of the file cannot be resolved by the system.\r\n"},
    {4390, u"The file or directory is not a reparse point.\r\n"},
    {4392, u"The data present in the reparse point buffer is invalid.\r\n"},
    {4393, u"The tag present in the reparse point buffer is invalid.\r\n"},
    {6000, u"The specified file could not be encrypted.\r\n"},
    {6001, u"The specified file could not be decrypted.\r\n"},
    {6002,
     u"The specified file is encrypted and the user does not have the ability to decrypt it.\r\n"},
};

static_assert(std::is_sorted(std::begin(ErrorTexts), std::end(ErrorTexts),
                             [](const ErrorText& a, const ErrorText& b) {
                               return a.code < b.code;
                             }));

}  // namespace

TextView EnglishSystemErrorText(std::uint32_t code) {
  const auto* const found = std::lower_bound(
      std::begin(ErrorTexts), std::end(ErrorTexts), code,
      [](const ErrorText& row, std::uint32_t wanted) { return row.code < wanted; });
  return found != std::end(ErrorTexts) && found->code == code ? found->text : TextView();
}

}  // namespace quillmarsh
