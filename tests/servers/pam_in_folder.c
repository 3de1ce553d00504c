// Preloaded into servers, so that they do without what is not ours to write into or not to be had without
// special rights. Each part works only where its variable is set:
//   MOSAICON_PAM_FOLDER  the rules for logins are there, and not in /etc
//   MOSAICON_LOGIN       one more account, a line as in /etc/passwd
//   MOSAICON_ROOT        who goes there, as sshd does for a session, sees it as "/", where the rights suffice
//   MOSAICON_ROOM        a file with a 64-bit number: so many bytes fit into the files of its owner until the
//                        disk counts as full
#define _GNU_SOURCE
#include <errno.h>
#include <fcntl.h>
#include <pwd.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

typedef struct pam_handle pam_handle_t;
struct pam_conv;

// Not every server has it.
__attribute__((weak)) int pam_start_confdir(const char *service, const char *user,
                                            const struct pam_conv *conversation, const char *folder,
                                            pam_handle_t **handle);

static char *login;
static char *root;
static int64_t *room;
static uid_t room_owner;

__attribute__((constructor)) static void read_variables(void) {
  // Copies: sshd replaces its environment.
  const char *value = getenv("MOSAICON_LOGIN");
  login = value ? strdup(value) : NULL;
  value = getenv("MOSAICON_ROOT");
  root = value ? strdup(value) : NULL;
  value = getenv("MOSAICON_ROOM");
  if (!value)
    return;
  int file = open(value, O_RDWR | O_CLOEXEC);
  struct stat status;
  void *memory = MAP_FAILED;
  if (file >= 0 && fstat(file, &status) == 0)
    memory = mmap(NULL, sizeof *room, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
  if (memory == MAP_FAILED) {
    perror(value);
    _exit(1);
  }
  close(file);
  room = memory;
  room_owner = status.st_uid;
}

int pam_start(const char *service, const char *user, const struct pam_conv *conversation,
              pam_handle_t **handle) {
  return pam_start_confdir(service, user, conversation, getenv("MOSAICON_PAM_FOLDER"), handle);
}

struct passwd *getpwnam(const char *name) {
  size_t length = strlen(name);
  if (login && strncmp(login, name, length) == 0 && login[length] == ':') {
    FILE *line = fmemopen(login, strlen(login), "r");
    struct passwd *account = line ? fgetpwent(line) : NULL;
    if (line)
      fclose(line);
    return account;
  }
  static struct passwd found;
  static char text[4096];
  struct passwd *result = NULL;
  errno = getpwnam_r(name, &found, text, sizeof text, &result);
  return result;
}

int chdir(const char *path) {
  if (root && strcmp(path, root) == 0 && chroot(path) == 0)
    path = "/";
  return (int)syscall(SYS_chdir, path);
}

ssize_t write(int file, const void *data, size_t size) {
  struct stat status;
  // The first three are the server's own.
  if (room && file > 2 && fstat(file, &status) == 0 && S_ISREG(status.st_mode) &&
      status.st_uid == room_owner &&
      __atomic_fetch_sub(room, (int64_t)size, __ATOMIC_RELAXED) < (int64_t)size) {
    __atomic_fetch_add(room, (int64_t)size, __ATOMIC_RELAXED);
    errno = ENOSPC;
    return -1;
  }
  return syscall(SYS_write, file, data, size);
}
