#include "tests/admin/fleet.h"

#include <cstdio>

#include "tests/support/files.h"

std::string FleetQueue(int n) {
  char name[32];
  snprintf(name, sizeof(name), "fleet-%03d", n);
  return name;
}

bool StartFleet(PrivateCupsd& cupsd, int queues, int stride,
                const std::string& ppd_path, std::string* error) {
  // cupsd writes printers.conf when it stops: stop it first.
  cupsd.Stop();
  std::string ppd = ReadFile(ppd_path);
  std::string conf;
  for (int i = 1; i <= queues; i++) {
    std::string name = FleetQueue(i);
    bool filter = i % stride == 0;
    conf += "<Printer " + name + ">\n";
    conf += filter ? std::string("DeviceURI quillarothsim://") + name +
                         "?total=350&remaining=120&sheet=8f10\n"
                   : "DeviceURI socket://127.0.0.1:9\n";
    conf += "State Idle\nAccepting Yes\n";
    if (filter) {
      if (!WriteFile(cupsd.root() + "/etc/ppd/" + name + ".ppd", ppd, 0640)) {
        *error = "cannot write the PPD of " + name;
        return false;
      }
    }
    conf += "</Printer>\n";
  }
  if (!WriteFile(cupsd.root() + "/etc/printers.conf", conf, 0600)) {
    *error = "cannot write printers.conf";
    return false;
  }
  return cupsd.RestartWith("", error);
}
