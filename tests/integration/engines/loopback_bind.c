/* Preloaded into daemons that listen on all addresses: they listen on the loopback only. */
#define _GNU_SOURCE
#include <arpa/inet.h>
#include <dlfcn.h>
#include <netinet/in.h>
#include <string.h>
#include <sys/socket.h>

int bind(int socket, const struct sockaddr *address, socklen_t length) {
  int (*next)(int, const struct sockaddr *, socklen_t) =
      (int (*)(int, const struct sockaddr *, socklen_t))dlsym(RTLD_NEXT, "bind");
  if (address != NULL && address->sa_family == AF_INET && length >= sizeof(struct sockaddr_in)) {
    struct sockaddr_in local;
    memcpy(&local, address, sizeof local);
    if (local.sin_addr.s_addr == htonl(INADDR_ANY)) local.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return next(socket, (struct sockaddr *)&local, sizeof local);
  }
  return next(socket, address, length);
}
