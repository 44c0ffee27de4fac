#include "PasswordVault.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "support/ErrorOf.h"
#include "support/TempDir.h"

using qvhost::TPasswordVault;
using qvtest::TempDir;

namespace {

std::string DecryptError(TPasswordVault& vault, const std::string& text) {
  return qvtest::ErrorOf([&] { vault.Decrypt(text); });
}

TEST(TPasswordVault, SealsWithAFreshNonceUnderAPrivateKeyFile) {
  TempDir dir;
  std::string keyFile = dir.File("config/quorvex/key");
  TPasswordVault vault(keyFile);
  std::string a = vault.Encrypt("hunter2"), b = vault.Encrypt("hunter2");
  EXPECT_TRUE(a.starts_with("qvenc1:")) << a;
  EXPECT_NE(a, b);
  EXPECT_EQ(a.find("hunter2"), std::string::npos);
  EXPECT_EQ(vault.Decrypt(b), "hunter2");
  EXPECT_EQ(vault.Encrypt(""), "");
  EXPECT_EQ(vault.Decrypt(""), "");

#ifndef _WIN32  // Windows keeps the user's key itself
  EXPECT_EQ(std::filesystem::status(keyFile).permissions(),
            std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
#endif
  // Another host of the same user reads the same key.
  TPasswordVault later(keyFile);
  EXPECT_EQ(later.Decrypt(a), "hunter2");
}

TEST(TPasswordVault, RejectsWhatItDidNotSeal) {
  TempDir dir;
  TPasswordVault mine(dir.File("mine")), theirs(dir.File("theirs"));
  std::string sealed = theirs.Encrypt("secret");
  std::string tampered = sealed;
  tampered[20] = tampered[20] == 'A' ? 'B' : 'A';  // inside the nonce
#ifdef _WIN32
  EXPECT_EQ(DecryptError(theirs, tampered),
            "The password cannot be decrypted by this Windows user");
#else
  std::string foreign =
      "The password cannot be decrypted with the key in \"" + dir.File("mine") + "\"";
  EXPECT_EQ(DecryptError(mine, sealed), foreign);
  EXPECT_EQ(DecryptError(theirs, tampered),
            "The password cannot be decrypted with the key in \"" + dir.File("theirs") + "\"");
#endif
  EXPECT_EQ(DecryptError(mine, "secret"), "The password is not in the host's encrypted form");
  EXPECT_EQ(DecryptError(mine, "qvenc1:!!"), "The password is not in the host's encrypted form");
#ifndef _WIN32
  dir.Write("damaged", "not a key\n");
  TPasswordVault damaged(dir.File("damaged"));
  EXPECT_EQ(DecryptError(damaged, sealed),
            "The password key file \"" + dir.File("damaged") + "\" is damaged");
#endif
}

}  // namespace
