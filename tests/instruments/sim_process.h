// tavik-sim as a child process on a pseudo-terminal, for the end-to-end tests over the
// real Qt serial port: the scene is written to a temporary folder (removed with the
// object), the simulator's first line is the device to open.
#pragma once

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <functional>
#include <string>

namespace tavik::test {

// The application of a test that has none of its own (a window test has one already).
inline QCoreApplication& QtApp() {
  if (QCoreApplication* running = QCoreApplication::instance()) return *running;
  static int argc = 1;
  static char name[] = "e2e_tests";
  static char* argv[] = {name, nullptr};
  static QCoreApplication app(argc, argv);
  return app;
}

// Runs the event loop until `done` or `ms` have passed.
inline bool SpinUntil(const std::function<bool()>& done, int ms = 5000) {
  QtApp();
  QElapsedTimer clock;
  clock.start();
  while (!done() && clock.elapsed() < ms) QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
  return done();
}

class Sim {
 public:
  // `scene` in the simulator's scene format; `extra` further arguments.
  Sim(const std::string& family, const std::string& scene, const QStringList& extra = {}) {
    QtApp();
    const QString scenePath = dir_.filePath("scene.txt");
    QFile f(scenePath);
    if (f.open(QIODevice::WriteOnly)) f.write(scene.c_str());
    f.close();
    Start(QStringList{"--family", QString::fromStdString(family), "--scene", scenePath, "--hold"} + extra);
  }
  // A GNSS receiver of the kind; `record` names the file (in the temporary folder) that
  // gets every byte it is sent.
  struct Gnss {};
  Sim(Gnss, const std::string& kind, const QStringList& extra = {}) {
    QtApp();
    Start(QStringList{"--gnss", QString::fromStdString(kind), "--record", dir_.filePath("record")} + extra);
  }
  // What the simulator has been sent so far (with --record of the GNSS receiver).
  std::string Recorded() const {
    QFile f(dir_.filePath("record"));
    return f.open(QIODevice::ReadOnly) ? f.readAll().toStdString() : std::string();
  }
  QString Folder() const { return dir_.path(); }
  ~Sim() {
    process_.kill();
    process_.waitForFinished(2000);
  }
  // A line for the simulator ("target 1", "fire"), given a moment to be taken.
  void Command(const std::string& line) {
    process_.write((line + "\n").c_str());
    process_.waitForBytesWritten(1000);
    SpinUntil([] { return false; }, 50);
  }
  std::string path;

 private:
  void Start(const QStringList& args) {
    process_.start(TAVIK_BIN_DIR "/tools/sim/tavik-sim", args);
    process_.waitForStarted(5000);
    SpinUntil([&] { return process_.canReadLine() || process_.state() == QProcess::NotRunning; });
    path = process_.readLine().trimmed().toStdString();
  }

  QTemporaryDir dir_;
  QProcess process_;
};

}  // namespace tavik::test
