/* bare_calls: the system calls that a command cannot do without, and nothing else.
   bare_calls list STORE: opens, reads and closes each profile_name in STORE.
   bare_calls create DIRECTORY: makes DIRECTORY, which must not exist, with the files of a new
   profile, and flushes all of it. */
#include <dirent.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

static void check(int good, const char* what) {
  if (good) return;
  perror(what);
  exit(1);
}

static void flushAndClose(int fd) {
  check(fsync(fd) == 0, "fsync");
  check(close(fd) == 0, "close");
}

static void flushDirectory(const char* path) {
  const int fd = open(path, O_RDONLY | O_DIRECTORY);
  check(fd >= 0, path);
  flushAndClose(fd);
}

static void list(const char* store) {
  DIR* stream = opendir(store);
  check(stream != NULL, store);
  for (struct dirent* entry; (entry = readdir(stream)) != NULL;) {
    if (entry->d_name[0] == '.') continue;
    char path[sizeof(entry->d_name) + sizeof("/profile_name")];
    const size_t length = strlen(entry->d_name);
    memcpy(path, entry->d_name, length);
    memcpy(path + length, "/profile_name", sizeof("/profile_name"));
    const int fd = openat(dirfd(stream), path, O_RDONLY);
    check(fd >= 0, path);
    char name[4096];
    check(read(fd, name, sizeof(name)) >= 0, path);
    close(fd);
  }
  closedir(stream);
}

static void create(const char* directory) {
  static const char* const files[][2] = {{"hip.conf", "master_interface=auto\n"},
                                         {"endbox.conf", ""},
                                         {"mapconfig.static", "map_uri=https://10.0.0.1:8096\n"},
                                         {"profile_name", "new\n"}};
  char path[4096];
  check(mkdir(directory, 0755) == 0, directory);
  for (size_t i = 0; i < sizeof(files) / sizeof(*files); ++i) {
    const size_t size = strlen(files[i][1]);
    snprintf(path, sizeof(path), "%s/%s", directory, files[i][0]);
    const int fd = open(path, O_WRONLY | O_CREAT | O_EXCL, 0640);
    check(fd >= 0, path);
    check(write(fd, files[i][1], size) == (ssize_t)size, path);
    flushAndClose(fd);
  }
  snprintf(path, sizeof(path), "%s/ca-certs", directory);
  check(mkdir(path, 0755) == 0, path);
  flushDirectory(path);
  flushDirectory(directory);
  snprintf(path, sizeof(path), "%s/..", directory);
  flushDirectory(path);
}

int main(int count, char** words) {
  check(count == 3, "bare_calls list|create DIRECTORY");
  (strcmp(words[1], "list") == 0 ? list : create)(words[2]);
  return 0;
}
