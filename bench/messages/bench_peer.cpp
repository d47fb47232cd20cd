// The other side of the benches of messages: does what a message's code asks for.
//   1      answers by code 1, empty, at once
//   2      Integer N: sends N messages of code 7, then one of code 4
//   else   ends
#include <pvm3.h>

namespace {

constexpr int kEcho = 1;
constexpr int kFlood = 2;
constexpr int kText = 7;
constexpr int kDone = 4;

void packInt(int value) {
  pvm_pkint(&value, 1, 1);
}

void sendEmpty(int to, int tag) {
  pvm_initsend(PvmDataDefault);
  packInt(0);
  pvm_send(to, tag);
}

void sendText(int to) {
  static char text[] = "iteration 1200 residual 4.123e-05 heat flow 8202.67 W/m";
  pvm_initsend(PvmDataDefault);
  packInt(1);
  packInt(7);
  packInt(sizeof text - 1);
  pvm_pkstr(text);
  pvm_send(to, kText);
}

}  // namespace

int main() {
  const int parent = pvm_parent();
  while (true) {
    const int buffer = pvm_recv(parent, -1);
    int bytes = 0;
    int tag = 0;
    int source = 0;
    if (buffer <= 0 || pvm_bufinfo(buffer, &bytes, &tag, &source) < 0) return 1;
    if (tag == kEcho) {
      sendEmpty(source, kEcho);
    } else if (tag == kFlood) {
      int fields[3] = {};
      pvm_upkint(fields, 3, 1);
      for (int i = 0; i < fields[2]; ++i) sendText(source);
      sendEmpty(source, kDone);
    } else {
      break;
    }
  }
  pvm_exit();
  return 0;
}
