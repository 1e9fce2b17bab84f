// Files and directories, on the system's calls. A handle is the descriptor plus
// one, so that null is no file; nothing is allocated for it.
//
// Every call that a signal can interrupt is taken up again. Reads and writes go
// on until everything is transferred, the file ends, or the system refuses; what
// was transferred until then is the result. Those at an offset leave the file's
// own position where it is.
//
// A name from osl_fileCreateTmpName ends in `kTemporarySuffix`. By that
// osl_fileOpen knows a temporary file: it is made for its owner alone and a
// symbolic link in its place is refused.
#include "osl_internal.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

static_assert(sizeof(off_t) == sizeof(OSL_FILE_OFFSET));
static_assert(OSL_OPEN_READ == O_RDONLY);
static_assert(OSL_OPEN_CREATE == (O_RDWR | O_CREAT));
static_assert(OSL_OPEN_TRUNCATE == (O_RDWR | O_CREAT | O_TRUNC));
static_assert(OSL_SEEK_START == SEEK_SET && OSL_SEEK_CURRENT == SEEK_CUR);

namespace {

constexpr std::string_view kTemporarySuffix = ".osltmp";
constexpr mode_t kOrdinaryMode = 0666; // less the process's umask
constexpr mode_t kTemporaryMode = 0600;
constexpr mode_t kDirectoryMode = 0777;

OSL_FH handle_of(int descriptor) {
    return reinterpret_cast<OSL_FH>(static_cast<intptr_t>(descriptor) + 1);
}

int descriptor_of(OSL_FH fh) {
    return static_cast<int>(reinterpret_cast<intptr_t>(fh) - 1);
}

bool refuses_file() {
    return osl::refuses(osl::Resource::file);
}

/// Runs a system call until no signal interrupts it.
template <class Call>
auto uninterrupted(Call call) {
    auto result = call();
    while (result == -1 && errno == EINTR) {
        result = call();
    }
    return result;
}

/// What the last failed system call comes to.
OAK_RETCODE failure() {
    return errno == ENOENT || errno == ENOTDIR ? eNOFILE : eFILEIO;
}

bool is_temporary(std::string_view name) {
    return name.ends_with(kTemporarySuffix);
}

enum class Transfer { complete, ended, failed };

/// Calls `step` (bytes done so far, bytes left; the system's count) until all is
/// transferred.
template <class Step>
Transfer transfer(uint32_t count, uint32_t *done, Step step) {
    *done = 0;
    while (*done < count) {
        const ssize_t moved = uninterrupted([&] { return step(*done, count - *done); });
        if (moved <= 0) {
            return moved == 0 ? Transfer::ended : Transfer::failed;
        }
        *done += static_cast<uint32_t>(moved);
    }
    return Transfer::complete;
}

/// A read's result: an error counts only if nothing was read before it.
template <class Step>
uint32_t read_all(uint32_t count, Step step) {
    uint32_t done = 0;
    if (refuses_file()) {
        return OSL_READ_ERROR;
    }
    const Transfer result = transfer(std::min(count, OSL_READ_ERROR - 1), &done, step);
    return result == Transfer::failed && done == 0 ? OSL_READ_ERROR : done;
}

template <class Step>
uint32_t write_all(uint32_t count, Step step) {
    uint32_t done = 0;
    if (!refuses_file()) {
        transfer(count, &done, step);
    }
    return done;
}

} // namespace

// ---- Opening and closing ----------------------------------------------------

OSL_FH osl_fileOpen(const char *name, int32_t openFlags, uint16_t) {
    if (name == nullptr || refuses_file()) {
        return nullptr;
    }
    const bool temporary = is_temporary(name);
    const int flags = openFlags | O_CLOEXEC | (temporary ? O_NOFOLLOW : 0);
    const mode_t mode = temporary ? kTemporaryMode : kOrdinaryMode;
    const int descriptor = uninterrupted([&] { return open(name, flags, mode); });
    if (descriptor < 0) {
        return nullptr;
    }
    osl::count_live(osl::Live::files, 1);
    return handle_of(descriptor);
}

void osl_fileClose(OSL_FH fh) {
    if (fh != nullptr) {
        close(descriptor_of(fh)); // the descriptor is gone even if a signal interrupts
        osl::count_live(osl::Live::files, -1);
    }
}

// ---- Reading and writing ----------------------------------------------------

uint32_t osl_fileRead(OSL_FH fh, void *buffer, uint32_t count) {
    return read_all(count, [&](uint32_t done, uint32_t left) {
        return read(descriptor_of(fh), static_cast<char *>(buffer) + done, left);
    });
}

uint32_t osl_fileWrite(OSL_FH fh, const void *buffer, uint32_t count) {
    return write_all(count, [&](uint32_t done, uint32_t left) {
        return write(descriptor_of(fh), static_cast<const char *>(buffer) + done, left);
    });
}

uint32_t osl_fileSeekRead(OSL_FH fh, OSL_FILE_OFFSET offset, void *buffer, uint32_t count) {
    return read_all(count, [&](uint32_t done, uint32_t left) {
        return pread(descriptor_of(fh), static_cast<char *>(buffer) + done, left,
                     static_cast<off_t>(offset + done));
    });
}

uint32_t osl_fileSeekWrite(OSL_FH fh, OSL_FILE_OFFSET offset, const void *buffer, uint32_t count) {
    return write_all(count, [&](uint32_t done, uint32_t left) {
        return pwrite(descriptor_of(fh), static_cast<const char *>(buffer) + done, left,
                      static_cast<off_t>(offset + done));
    });
}

OAK_RETCODE osl_fileSeek(OSL_FH fh, OSL_FILE_OFFSET offset, int32_t origin,
                         OSL_FILE_OFFSET *pResult) {
    if (origin != OSL_SEEK_START && origin != OSL_SEEK_CURRENT) {
        return eINVARG;
    }
    if (refuses_file()) {
        return eFILEIO;
    }
    const off_t result = lseek(descriptor_of(fh), static_cast<off_t>(offset), origin);
    if (result < 0) {
        return eFILEIO;
    }
    if (pResult != nullptr) {
        *pResult = static_cast<OSL_FILE_OFFSET>(result);
    }
    return sOKAY;
}

// ---- The open file ----------------------------------------------------------

OAK_RETCODE osl_fileSetSize(OSL_FH fh, OSL_FILE_OFFSET size) {
    const auto set = [&] { return ftruncate(descriptor_of(fh), static_cast<off_t>(size)); };
    return !refuses_file() && uninterrupted(set) == 0 ? sOKAY : eFILEIO;
}

OSL_FILE_OFFSET osl_fileLength(OSL_FH fh) {
    struct stat status = {};
    return fstat(descriptor_of(fh), &status) == 0 ? static_cast<OSL_FILE_OFFSET>(status.st_size)
                                                  : 0;
}

OAK_RETCODE osl_fileLock(OSL_FH fh) {
    if (refuses_file()) {
        return eFILEIO;
    }
    if (uninterrupted([&] { return flock(descriptor_of(fh), LOCK_EX | LOCK_NB); }) == 0) {
        return sOKAY;
    }
    return errno == EWOULDBLOCK ? eFILEINUSE : eFILEIO;
}

OAK_RETCODE osl_fileUnlock(OSL_FH fh) {
    return uninterrupted([&] { return flock(descriptor_of(fh), LOCK_UN); }) == 0 ? sOKAY : eFILEIO;
}

// ---- Names ------------------------------------------------------------------

OAK_RETCODE osl_fileRemove(const char *name) {
    if (name == nullptr) {
        return eINVNULLARG;
    }
    if (refuses_file()) {
        return eFILEIO;
    }
    return unlink(name) == 0 ? sOKAY : failure();
}

OAK_RETCODE osl_fileRemoveEx(const char *name, uint16_t) {
    return osl_fileRemove(name);
}

OAK_RETCODE osl_fileValidate(const char *name) {
    if (name == nullptr) {
        return eINVNULLARG;
    }
    return access(name, F_OK) == 0 ? sOKAY : eNOFILE;
}

OAK_BOOL_T osl_fileValidateEx(const char *name, uint32_t, OAK_BOOL_T *pIsDir) {
    struct stat status = {};
    if (name == nullptr || stat(name, &status) != 0) {
        return OAK_FALSE;
    }
    if (pIsDir != nullptr) {
        *pIsDir = S_ISDIR(status.st_mode) ? OAK_TRUE : OAK_FALSE;
    }
    return OAK_TRUE;
}

OAK_RETCODE osl_dirCreate(const char *name) {
    if (name == nullptr) {
        return eINVNULLARG;
    }
    return !refuses_file() && mkdir(name, kDirectoryMode) == 0 ? sOKAY : eMKDIR;
}

OAK_RETCODE osl_dirRemove(const char *name) {
    if (name == nullptr) {
        return eINVNULLARG;
    }
    if (refuses_file()) {
        return eFILEIO;
    }
    return rmdir(name) == 0 ? sOKAY : failure();
}

char *osl_fileCreateTmpName(uint32_t *counter, const char *prefix, uint32_t, uint32_t,
                            OSL_MEMTAG tag) {
    uint64_t random[2];
    if (prefix == nullptr || !osl::fill_random(random, sizeof random)) {
        return nullptr;
    }
    const char *set = std::getenv("TMPDIR");
    const char *directory = set != nullptr && *set != '\0' ? set : "/tmp";
    const uint32_t number = counter != nullptr ? (*counter)++ : 0;
    return osl_makeStrVA(__FILE__, __LINE__, tag, "%s/%s%u-%016llx%016llx%.*s", directory, prefix,
                         number, static_cast<unsigned long long>(random[0]),
                         static_cast<unsigned long long>(random[1]),
                         static_cast<int>(kTemporarySuffix.size()), kTemporarySuffix.data());
}

// ---- Absolute paths ---------------------------------------------------------

namespace {

/// Appends the components of `path` to the absolute path in `out`, without empty
/// ones and ".", each ".." taking one away. `out` has room.
char *append_components(char *begin, char *end, const char *path) {
    while (*path != '\0') {
        const size_t length = std::strcspn(path, "/");
        const std::string_view component(path, length);
        if (component == "..") {
            while (end > begin && *--end != '/') {
            }
        } else if (!component.empty() && component != ".") {
            *end++ = '/';
            std::memcpy(end, path, length);
            end += length;
        }
        path += length + (path[length] == '/' ? 1 : 0);
    }
    return end;
}

char *absolute_by_name(const char *path, const char *directory, OSL_MEMTAG tag) {
    auto *out = static_cast<char *>(OSL_GET(std::strlen(directory) + std::strlen(path) + 3, tag));
    if (out == nullptr) {
        return nullptr;
    }
    char *end = append_components(out, out, directory);
    end = append_components(out, end, path);
    if (end == out) {
        *end++ = '/';
    }
    *end = '\0';
    return out;
}

bool climbs(const char *path) {
    for (const char *at = std::strstr(path, ".."); at != nullptr; at = std::strstr(at + 1, "..")) {
        if ((at == path || at[-1] == '/') && (at[2] == '/' || at[2] == '\0')) {
            return true;
        }
    }
    return false;
}

} // namespace

char *osl_fullpathEx(const char *path, OSL_MEMTAG tag) {
    if (path == nullptr) {
        return nullptr;
    }
    // Behind a symbolic link ".." is not the component before it: the system knows.
    char resolved[PATH_MAX];
    if (climbs(path) && realpath(path, resolved) != nullptr) {
        return absolute_by_name(resolved, "", tag);
    }
    char directory[PATH_MAX] = "";
    if (path[0] != '/' && getcwd(directory, sizeof directory) == nullptr) {
        return nullptr;
    }
    return absolute_by_name(path, directory, tag);
}
