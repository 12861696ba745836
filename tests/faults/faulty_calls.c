/* A library that is loaded in front of the C library (LD_PRELOAD) and lets one call of the program's go wrong.
 *
 *   FAULTY_COUNTS=FILE   where the calls are counted, as `struct Counts`: mapped, so that the counts outlive a program that is killed
 *   FAULTY_CALL=KIND     the calls that go wrong: one of kKinds
 *   FAULTY_AT=N          the Nth of them, from 1; 0: none, they are counted; -1: all
 *   FAULTY_HOW=WORD      "ENOSPC" and other names of kErrors: it fails so; "short": one byte is read or written; "part": half is written
 *                        and the next call fails with ENOSPC, as on a disk that is full; "EINTR" at every other call; "kill", "term":
 *                        this signal is sent before it; "slow": it takes 20 ms
 *
 * Standard error is let alone: what is told about the fault is read there. */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <stdarg.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/types.h>
#include <unistd.h>

enum Kind { kWrite, kRead, kOpen, kFsync, kRename, kClose, kTruncate, kAllocate, kKindCount };
static const char* const kKinds[kKindCount] = {"write", "read", "open", "fsync", "rename", "close", "truncate", "allocate"};

static const struct {
  const char* name;
  int number;
} kErrors[] = {{"ENOSPC", ENOSPC}, {"EIO", EIO},       {"EDQUOT", EDQUOT}, {"EACCES", EACCES}, {"EMFILE", EMFILE},
               {"ENOMEM", ENOMEM}, {"EPIPE", EPIPE},   {"EROFS", EROFS},   {"EXDEV", EXDEV},   {"EFBIG", EFBIG}};

struct Counts {
  uint32_t calls[kKindCount];
  uint32_t faults;   /* that were made */
};

static struct Counts unmapped, *counts = &unmapped;
static int wanted = -1, error, isArmed;
static long at;
static enum { kFails, kShort, kPart, kAgain, kSignal, kSlow } how;
static int signalNumber;

__attribute__((constructor)) static void Arm(void) {
  const char* file = getenv("FAULTY_COUNTS");
  const char* call = getenv("FAULTY_CALL");
  const char* word = getenv("FAULTY_HOW");
  if (!file) return;
  const int descriptor = open(file, O_RDWR | O_CREAT, 0600);
  if (descriptor < 0 || ftruncate(descriptor, sizeof(struct Counts)) != 0) abort();
  void* const map = mmap(NULL, sizeof(struct Counts), PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
  if (map == MAP_FAILED) abort();
  close(descriptor);
  counts = map;
  for (int i = 0; call && i < kKindCount; ++i) wanted = strcmp(call, kKinds[i]) == 0 ? i : wanted;
  at = getenv("FAULTY_AT") ? atol(getenv("FAULTY_AT")) : 0;
  if (word) {
    int known = 1;
    if (strcmp(word, "short") == 0) how = kShort;
    else if (strcmp(word, "part") == 0) how = kPart;
    else if (strcmp(word, "EINTR") == 0) how = kAgain;
    else if (strcmp(word, "slow") == 0) how = kSlow;
    else if (strcmp(word, "kill") == 0) how = kSignal, signalNumber = SIGKILL;
    else if (strcmp(word, "term") == 0) how = kSignal, signalNumber = SIGTERM;
    else known = 0;
    for (size_t i = 0; i < sizeof kErrors / sizeof *kErrors; ++i) {
      if (strcmp(word, kErrors[i].name) == 0) how = kFails, error = kErrors[i].number, known = 1;
    }
    if (!known) abort();
  }
  if ((call && wanted < 0) || (at && (wanted < 0 || !word))) abort();
  memset(counts, 0, sizeof *counts);
  isArmed = 1;
}

/* Counts a call; 1 when it fails, with its reason in errno. Of `length` bytes it may take fewer. */
static int Fault(enum Kind kind, size_t* length) {
  if (!isArmed) return 0;
  const long number = (long)__atomic_add_fetch(&counts->calls[kind], 1, __ATOMIC_RELAXED);
  if ((int)kind != wanted || at == 0) return 0;
  if (how == kPart && number == at + 1) return errno = ENOSPC, 1;
  if (at > 0 && number != at) return 0;
  __atomic_add_fetch(&counts->faults, 1, __ATOMIC_RELAXED);
  switch (how) {
    case kFails: return errno = error, 1;
    case kShort:
      if (length && *length > 1) *length = 1;
      return 0;
    case kPart:
      if (length && *length > 1) return *length /= 2, 0;
      return errno = ENOSPC, 1;
    case kAgain: return number % 2 == 1 || at > 0 ? (errno = EINTR, 1) : 0;
    case kSignal: return kill(getpid(), signalNumber), 0;
    case kSlow: return usleep(20000), 0;
  }
  return 0;
}

#pragma GCC visibility push(default)   /* in front of the C library's own */

#define REAL(type, name, ...) \
  static type (*real)(__VA_ARGS__); \
  if (!real) real = (type (*)(__VA_ARGS__))dlsym(RTLD_NEXT, name)

ssize_t write(int file, const void* bytes, size_t length) {
  REAL(ssize_t, "write", int, const void*, size_t);
  return file != STDERR_FILENO && Fault(kWrite, &length) ? -1 : real(file, bytes, length);
}
ssize_t pwrite(int file, const void* bytes, size_t length, off_t offset) {
  REAL(ssize_t, "pwrite", int, const void*, size_t, off_t);
  return Fault(kWrite, &length) ? -1 : real(file, bytes, length, offset);
}
ssize_t pwrite64(int file, const void* bytes, size_t length, off64_t offset) { return pwrite(file, bytes, length, offset); }
ssize_t read(int file, void* bytes, size_t length) {
  REAL(ssize_t, "read", int, void*, size_t);
  return Fault(kRead, &length) ? -1 : real(file, bytes, length);
}
ssize_t pread(int file, void* bytes, size_t length, off_t offset) {
  REAL(ssize_t, "pread", int, void*, size_t, off_t);
  return Fault(kRead, &length) ? -1 : real(file, bytes, length, offset);
}
ssize_t pread64(int file, void* bytes, size_t length, off64_t offset) { return pread(file, bytes, length, offset); }

int open(const char* path, int flags, ...) {
  REAL(int, "open", const char*, int, ...);
  va_list more;
  va_start(more, flags);
  const int mode = flags & (O_CREAT | O_TMPFILE) ? va_arg(more, int) : 0;
  va_end(more);
  return Fault(kOpen, NULL) ? -1 : real(path, flags, mode);
}
int open64(const char* path, int flags, ...) {
  va_list more;
  va_start(more, flags);
  const int mode = flags & (O_CREAT | O_TMPFILE) ? va_arg(more, int) : 0;
  va_end(more);
  return open(path, flags | O_LARGEFILE, mode);
}
int __open_2(const char* path, int flags) { return open(path, flags); }
int __open64_2(const char* path, int flags) { return open64(path, flags); }
int mkostemp(char* path, int flags) {
  REAL(int, "mkostemp", char*, int);
  return Fault(kOpen, NULL) ? -1 : real(path, flags);
}
int mkstemps(char* path, int suffix) {
  REAL(int, "mkstemps", char*, int);
  return Fault(kOpen, NULL) ? -1 : real(path, suffix);
}
FILE* fopen(const char* path, const char* mode) {
  REAL(FILE*, "fopen", const char*, const char*);
  return Fault(kOpen, NULL) ? NULL : real(path, mode);
}
FILE* fopen64(const char* path, const char* mode) { return fopen(path, mode); }

int fsync(int file) {
  REAL(int, "fsync", int);
  return Fault(kFsync, NULL) ? -1 : real(file);
}
int rename(const char* from, const char* to) {
  REAL(int, "rename", const char*, const char*);
  return Fault(kRename, NULL) ? -1 : real(from, to);
}
int ftruncate(int file, off_t length) {
  REAL(int, "ftruncate", int, off_t);
  return Fault(kTruncate, NULL) ? -1 : real(file, length);
}
int ftruncate64(int file, off64_t length) { return ftruncate(file, length); }
/* The descriptor is gone all the same, as the system has it. */
int close(int file) {
  REAL(int, "close", int);
  const int failed = Fault(kClose, NULL), why = errno;
  const int result = real(file);
  if (failed) errno = why;
  return failed ? -1 : result;
}

/* Without dlsym, which allocates: these names are the C library's own ones. */
extern void* __libc_malloc(size_t size);
extern void* __libc_calloc(size_t count, size_t size);
extern void* __libc_realloc(void* old, size_t size);
void* malloc(size_t size) { return Fault(kAllocate, NULL) ? NULL : __libc_malloc(size); }
void* calloc(size_t count, size_t size) { return Fault(kAllocate, NULL) ? NULL : __libc_calloc(count, size); }
void* realloc(void* old, size_t size) { return Fault(kAllocate, NULL) ? NULL : __libc_realloc(old, size); }
