// Passwords sealed with the Windows data protection API under the user's own key, which
// Windows keeps with the user's profile; there is no key file on Windows.
#include "PasswordVault.h"

// clang-format off
#include "QvWin32.h"
#include <wincrypt.h>
// clang-format on

#include "QvExceptions.h"

namespace qvhost {

namespace {

// Distinguishes this host's sealed passwords from other data the user's key protects.
const char kEntropy[] = "Quorvex host password";

struct TBlob {
  DATA_BLOB Data{};
  ~TBlob() {
    if (Data.pbData) {
      SecureZeroMemory(Data.pbData, Data.cbData);
      LocalFree(Data.pbData);
    }
  }
};

DATA_BLOB BlobOf(std::string_view text) {
  return {static_cast<DWORD>(text.size()), reinterpret_cast<BYTE*>(const_cast<char*>(text.data()))};
}

std::string ToBase64(const DATA_BLOB& blob) {
  DWORD size = 0;
  DWORD flags = CRYPT_STRING_BASE64 | CRYPT_STRING_NOCRLF;
  CryptBinaryToStringA(blob.pbData, blob.cbData, flags, nullptr, &size);
  std::string text(size, '\0');
  CryptBinaryToStringA(blob.pbData, blob.cbData, flags, text.data(), &size);
  text.resize(size);
  return text;
}

bool FromBase64(std::string_view text, std::string& out) {
  DWORD size = 0;
  if (!CryptStringToBinaryA(text.data(), static_cast<DWORD>(text.size()), CRYPT_STRING_BASE64,
                            nullptr, &size, nullptr, nullptr))
    return false;
  out.assign(size, '\0');
  return CryptStringToBinaryA(text.data(), static_cast<DWORD>(text.size()), CRYPT_STRING_BASE64,
                              reinterpret_cast<BYTE*>(out.data()), &size, nullptr, nullptr) != 0;
}

}  // namespace

TPasswordVault::TPasswordVault(std::string keyFile) : FKeyFile(std::move(keyFile)) {}

TPasswordVault::~TPasswordVault() = default;

std::string TPasswordVault::Encrypt(std::string_view plain) {
  if (plain.empty()) return {};
  DATA_BLOB in = BlobOf(plain), entropy = BlobOf(kEntropy);
  TBlob out;
  if (!CryptProtectData(&in, nullptr, &entropy, nullptr, nullptr, CRYPTPROTECT_UI_FORBIDDEN,
                        &out.Data))
    throw qv::Exception("The password cannot be encrypted: " +
                        qv::win32::ErrorText(GetLastError()));
  return std::string(kPrefix) + ToBase64(out.Data);
}

std::string TPasswordVault::Decrypt(std::string_view encrypted) {
  if (encrypted.empty()) return {};
  std::string sealed;
  if (!encrypted.starts_with(kPrefix) || !FromBase64(encrypted.substr(kPrefix.size()), sealed) ||
      sealed.empty())
    throw qv::Exception("The password is not in the host's encrypted form");
  DATA_BLOB in = BlobOf(sealed), entropy = BlobOf(kEntropy);
  TBlob out;
  if (!CryptUnprotectData(&in, nullptr, &entropy, nullptr, nullptr, CRYPTPROTECT_UI_FORBIDDEN,
                          &out.Data))
    throw qv::Exception("The password cannot be decrypted by this Windows user");
  return std::string(reinterpret_cast<const char*>(out.Data.pbData), out.Data.cbData);
}

}  // namespace qvhost
