// Where the program keeps its files. The program's own files live under one per-user
// data folder: $TAVIK_HOME when set (tests use it), else $XDG_DATA_HOME/tavik, else
// ~/.local/share/tavik. Inside it: symb/ (Software.ini, the symbol library), the three
// work files and Insurance.TV.
//
// The documents' work folder 工作目錄, where the file dialogs start, stands apart, in
// ~/TAVIK: a document is named by its path up to the first dot, so a default folder
// under ~/.local would turn every new document into the hidden file "~/.SPC". With
// $TAVIK_HOME set everything stays inside that one folder, so a test or a trial run
// leaves nothing in the user's home.
//
// The work files were named without regard to case where they came from, so an
// existing file is found whatever the case of its name.
#pragma once

#include <filesystem>
#include <string>

namespace tavik {

struct AppPaths {
  AppPaths() = default;
  explicit AppPaths(std::filesystem::path home, std::filesystem::path documents = {})
      : Home(std::move(home)), Documents(std::move(documents)) {}

  std::filesystem::path Home;
  // The folder that holds 工作目錄; empty means Home.
  std::filesystem::path Documents;

  static AppPaths FromEnvironment();
  // Creates Home, symb and 工作目錄 when missing. False when the folder cannot be made.
  bool EnsureFolders() const;

  std::filesystem::path Symb() const { return Find(Home, "symb"); }
  std::filesystem::path WorkFolder() const { return Find(Documents.empty() ? Home : Documents, "工作目錄"); }
  std::filesystem::path SoftwareIni() const { return Find(Symb(), "Software.ini"); }
  std::filesystem::path TempP0() const { return Find(Home, "TEMPP0"); }
  std::filesystem::path TempS0() const { return Find(Home, "TEMPS0"); }
  std::filesystem::path TempBM() const { return Find(Home, "TEMPBM"); }
  std::filesystem::path InsuranceTV() const { return Find(Home, "Insurance.TV"); }
  std::filesystem::path LockFile() const { return Home / "tavik.lock"; }

  // dir/name, or the existing entry of dir whose name equals name ignoring ASCII case.
  static std::filesystem::path Find(const std::filesystem::path& dir, const std::string& name);
};

}  // namespace tavik
