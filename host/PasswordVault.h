// Encryption of the passwords that actions keep in project files, with a per-user key.
#pragma once

#include <string>
#include <string_view>

namespace qvhost {

// Seals passwords with libsodium's secretbox (XSalsa20-Poly1305, a random nonce each time)
// under a 32-byte key read from, or on first use created in, a file only the user can read.
// On Windows the system's data protection seals them under the user's own key instead, and
// the key file is not used (PasswordVault-posix.cpp, PasswordVault-win32.cpp).
class TPasswordVault {
 public:
  // Encrypted texts start with this, so that they are recognised in a project file.
  static constexpr std::string_view kPrefix = "qvenc1:";

  // The key lives in `keyFile`; nothing is read or created before the first use.
  explicit TPasswordVault(std::string keyFile);
  ~TPasswordVault();
  TPasswordVault(const TPasswordVault&) = delete;
  TPasswordVault& operator=(const TPasswordVault&) = delete;

  // $QV_KEY_FILE, or "key" in the host's per-user configuration folder.
  static std::string DefaultKeyFile();

  // kPrefix followed by the base64 of nonce and sealed text; an empty password stays empty.
  // Throws qv::Exception when the key file can be neither read nor created.
  std::string Encrypt(std::string_view plain);
  // The password sealed by Encrypt under the same key; empty stays empty. Throws
  // qv::Exception for any other text, never quoting it.
  std::string Decrypt(std::string_view encrypted);

 private:
  const unsigned char* Key();

  std::string FKeyFile;
  std::string FKey;
};

}  // namespace qvhost
