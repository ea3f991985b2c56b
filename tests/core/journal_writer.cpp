// Test helper: measures points and entities into a new document under the folder given,
// through AddPoint and AddEntity, writing the recovery header after each as a command
// does, and prints "P n" or "S n" once each call has returned. The crash test kills it
// at a random moment and checks that everything it printed comes back.
#include <cstdio>
#include <cstdlib>
#include <string>

#include "core/tables.h"
#include "core/workfiles.h"
#include "journal_values.h"

using namespace tavik;
using namespace tavik::testing;

int main(int argc, char** argv) {
  if (argc < 3) {
    std::fprintf(stderr, "usage: journal_writer HOME COUNT\n");
    return 2;
  }
  AppPaths paths{argv[1]};
  if (!paths.EnsureFolders()) return 1;
  WorkFiles wf(paths);
  Document doc;
  SetDocumentName(doc, (paths.WorkFolder() / "field").string());
  View view;
  view.ScreenMinE = 280000, view.ScreenMaxE = 290000, view.ScreenMinN = 2750000, view.ScreenMaxN = 2760000;
  if (!wf.CreateEmpty()) return 1;
  wf.WriteRecoveryHeader(doc);
  const int count = std::atoi(argv[2]);
  for (int i = 1; i <= count; ++i) {
    if (!AddPoint(doc, view, wf, PointE(i), PointN(i), PointH(i))) return 1;
    wf.WriteRecoveryHeader(doc);
    std::printf("P %d\n", i);
    std::fflush(stdout);
    if (i % 2 == 0) {
      int n = doc.EntityCount + 1;
      if (!AddEntity(doc, view, wf, 99, PointE(i), PointN(i), PointH(i), "點" + std::to_string(n))) return 1;
      wf.WriteRecoveryHeader(doc);
      std::printf("S %d\n", n);
      std::fflush(stdout);
    }
  }
  return 0;
}
