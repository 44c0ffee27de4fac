#include "PasswordVault.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "support/ErrorOf.h"
#include "support/TempDir.h"

using qvhost::TPasswordVault;

namespace {

std::string DecryptError(TPasswordVault& vault, const std::string& text) {
  return qvtest::ErrorOf([&] { vault.Decrypt(text); });
}

TEST(TPasswordVault, SealsWithAFreshNonceUnderAPrivateKeyAndOpensOnlyWhatItSealed) {
  qvtest::TempDir dir;
  std::string keyFile = dir.File("config/quorvex/key");
  TPasswordVault vault(keyFile), other(dir.File("other"));
  std::string a = vault.Encrypt("hunter2"), b = vault.Encrypt("hunter2");
  EXPECT_TRUE(a.starts_with("qvenc1:")) << a;
  EXPECT_NE(a, b);
  EXPECT_EQ(a.find("hunter2"), std::string::npos);
  EXPECT_EQ(vault.Decrypt(b), "hunter2");
  EXPECT_EQ(vault.Encrypt(""), "");
  EXPECT_EQ(vault.Decrypt(""), "");
  // Another host of the same user reads the same key.
  TPasswordVault later(keyFile);
  EXPECT_EQ(later.Decrypt(a), "hunter2");

  std::string tampered = a;
  tampered[20] = tampered[20] == 'A' ? 'B' : 'A';  // inside the nonce
#ifdef _WIN32                                      // Windows keeps the user's key itself
  EXPECT_EQ(DecryptError(vault, tampered), "The password cannot be decrypted by this Windows user");
#else
  EXPECT_EQ(std::filesystem::status(keyFile).permissions(),
            std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
  std::string cannot = "The password cannot be decrypted with the key in \"";
  EXPECT_EQ(DecryptError(other, a), cannot + dir.File("other") + "\"");
  EXPECT_EQ(DecryptError(vault, tampered), cannot + keyFile + "\"");
  TPasswordVault damaged(dir.Write("damaged", "not a key\n"));
  EXPECT_EQ(DecryptError(damaged, a),
            "The password key file \"" + dir.File("damaged") + "\" is damaged");
#endif
  EXPECT_EQ(DecryptError(other, "secret"), "The password is not in the host's encrypted form");
  EXPECT_EQ(DecryptError(other, "qvenc1:!!"), "The password is not in the host's encrypted form");
}

}  // namespace
