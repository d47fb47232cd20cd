#include "session/TLPollNotifier.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <tcl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <ctime>
#include <vector>

namespace {

// Whoever wants to know of a descriptor; Tcl allows one handler each.
struct Handler {
  int descriptor;
  int wanted;     // mask of TCL_READABLE, TCL_WRITABLE, TCL_EXCEPTION
  int ready = 0;  // what the queued event will report; 0: no event is queued
  bool closed = false;
  Tcl_FileProc* proc;
  ClientData data;
};

// What one thread waits for.
struct Waiting {
  std::vector<Handler> handlers;
  std::vector<pollfd> polled;  // the handlers' entries, then the alarm's
  int alarm = -1;              // lets another thread end the wait

  Handler* find(int descriptor) {
    const auto found = std::find_if(handlers.begin(), handlers.end(),
                                    [=](const Handler& h) { return h.descriptor == descriptor; });
    return found == handlers.end() ? nullptr : &*found;
  }
};

thread_local Waiting gWaiting;

struct ReadyEvent {
  Tcl_Event header;
  int descriptor;
};

int serveReady(Tcl_Event* event, int flags) {
  if ((flags & TCL_FILE_EVENTS) == 0) return 0;
  Handler* handler = gWaiting.find(reinterpret_cast<ReadyEvent*>(event)->descriptor);
  if (handler == nullptr) return 1;
  const int mask = handler->ready & handler->wanted;
  handler->ready = 0;
  // The handler may remove itself or others: nothing of the list is used behind this call.
  if (mask != 0) handler->proc(handler->data, mask);
  return 1;
}

short pollMask(int wanted) {
  return static_cast<short>(((wanted & TCL_READABLE) != 0 ? POLLIN : 0) |
                            ((wanted & TCL_WRITABLE) != 0 ? POLLOUT : 0) |
                            ((wanted & TCL_EXCEPTION) != 0 ? POLLPRI : 0));
}

// An end or an error counts as ready, so that reading or writing can find out.
int readyMask(short found) {
  return ((found & (POLLIN | POLLHUP | POLLERR)) != 0 ? TCL_READABLE : 0) |
         ((found & (POLLOUT | POLLERR)) != 0 ? TCL_WRITABLE : 0) |
         ((found & POLLPRI) != 0 ? TCL_EXCEPTION : 0);
}

void queueReady(Handler& handler, int mask) {
  if (handler.ready == 0) {
    auto* event = reinterpret_cast<ReadyEvent*>(Tcl_Alloc(sizeof(ReadyEvent)));
    event->header.proc = serveReady;
    event->descriptor = handler.descriptor;
    Tcl_QueueEvent(&event->header, TCL_QUEUE_TAIL);
  }
  handler.ready = mask;
}

void takeAlarm() {
  std::uint64_t count = 0;
  while (read(gWaiting.alarm, &count, sizeof count) < 0 && errno == EINTR) {
  }
}

int waitForEvent(CONST86 Tcl_Time* limit) {
  auto& polled = gWaiting.polled;
  polled.clear();
  for (const Handler& handler : gWaiting.handlers) {
    polled.push_back({handler.closed ? -1 : handler.descriptor, pollMask(handler.wanted), 0});
  }
  polled.push_back({gWaiting.alarm, POLLIN, 0});

  timespec time = {};
  if (limit != nullptr) time = {limit->sec, limit->usec * 1000};
  if (ppoll(polled.data(), polled.size(), limit == nullptr ? nullptr : &time, nullptr) <= 0) {
    return 0;
  }
  if (polled.back().revents != 0) takeAlarm();
  for (std::size_t i = 0; i + 1 < polled.size(); ++i) {
    Handler& handler = gWaiting.handlers[i];
    // One that was closed behind Tcl's back would end every wait at once.
    handler.closed = handler.closed || (polled[i].revents & POLLNVAL) != 0;
    const int mask = readyMask(polled[i].revents) & handler.wanted;
    if (mask != 0) queueReady(handler, mask);
  }
  return 0;
}

void createFileHandler(int descriptor, int mask, Tcl_FileProc* proc, ClientData data) {
  Handler* handler = gWaiting.find(descriptor);
  if (handler == nullptr) {
    gWaiting.handlers.push_back({descriptor, mask, 0, false, proc, data});
    return;
  }
  handler->wanted = mask;
  handler->closed = false;
  handler->proc = proc;
  handler->data = data;
}

void deleteFileHandler(int descriptor) {
  std::erase_if(gWaiting.handlers, [=](const Handler& h) { return h.descriptor == descriptor; });
}

ClientData initNotifier() {
  if (gWaiting.alarm < 0) gWaiting.alarm = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
  return &gWaiting;
}

void finalizeNotifier(ClientData data) {
  auto* waiting = static_cast<Waiting*>(data);
  if (waiting->alarm >= 0) close(waiting->alarm);
  waiting->alarm = -1;
  waiting->handlers.clear();
}

void alertNotifier(ClientData data) {
  const std::uint64_t one = 1;
  // Only a counter that is full can fail, and that ends the wait as well.
  [[maybe_unused]] const auto written = write(static_cast<Waiting*>(data)->alarm, &one, sizeof one);
}

// The only event loop is Tcl's own, which hands its timers to each wait.
void setTimer(CONST86 Tcl_Time* /*time*/) {}
void serviceModeChanged(int /*mode*/) {}

}  // namespace

void usePollNotifier() {
  static bool done = false;
  if (done) return;
  done = true;
  Tcl_NotifierProcs procs = {};
  procs.setTimerProc = setTimer;
  procs.waitForEventProc = waitForEvent;
  procs.createFileHandlerProc = createFileHandler;
  procs.deleteFileHandlerProc = deleteFileHandler;
  procs.initNotifierProc = initNotifier;
  procs.finalizeNotifierProc = finalizeNotifier;
  procs.alertNotifierProc = alertNotifier;
  procs.serviceModeHookProc = serviceModeChanged;
  Tcl_SetNotifier(&procs);
}
