/* A program that loads the host by a relative name and then goes elsewhere, to a folder of the same look:
     relative_host lib/libvxhost.so ELSEWHERE
   The host must find what lies beside it, not what lies there. */
#include <dlfcn.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include "vxnls/vxhost.h"

static void write_file(const char* name) {
  FILE* const file = fopen(name, "w");
  if (file != NULL) fclose(file);
}

int main(int count, char** arguments) {
  if (count != 3) return 2;
  void* const library = dlopen(arguments[1], RTLD_NOW);
  if (library == NULL || (mkdir(arguments[2], 0777) != 0 && access(arguments[2], F_OK) != 0)) {
    printf("%s\n", dlerror());
    return 2;
  }
  if (chdir(arguments[2]) != 0) return 2;
  mkdir("lib", 0777);
  write_file("lib/libvxhost.so");
  write_file("lib/libvxhost.so.6");
  write_file("lib/libvxnlsloc.so");

  VXStatus (*open_host)(const char*, VXHost**);
  const char* (*failure)(void);
  void (*close_host)(VXHost*);
  *(void**)&open_host = dlsym(library, "vxhostOpen");
  *(void**)&failure = dlsym(library, "vxhostOpenFailure");
  *(void**)&close_host = dlsym(library, "vxhostClose");
  VXHost* host = NULL;
  const VXStatus status = open_host(NULL, &host);
  printf("%s\n", status == 0 ? "opened" : failure());
  close_host(host);
  return status != 0;
}
