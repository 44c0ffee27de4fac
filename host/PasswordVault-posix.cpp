// Passwords sealed with libsodium under the key in the user's key file.
#include "PasswordVault.h"

#include <sodium.h>

#include <cstdlib>
#include <vector>

#include "HostPlatform.h"
#include "QvExceptions.h"
#include "QvSysUtils.h"

namespace qvhost {

namespace {

constexpr int kBase64 = sodium_base64_VARIANT_ORIGINAL;

std::string ToBase64(const unsigned char* data, size_t size) {
  std::string text(sodium_base64_encoded_len(size, kBase64), '\0');
  sodium_bin2base64(text.data(), text.size(), data, size, kBase64);
  text.resize(text.size() - 1);  // the terminating NUL
  return text;
}

bool FromBase64(std::string_view text, std::vector<unsigned char>& out) {
  out.assign(text.size(), 0);
  size_t size = 0;
  if (sodium_base642bin(out.data(), out.size(), text.data(), text.size(), nullptr, &size, nullptr,
                        kBase64) != 0)
    return false;
  out.resize(size);
  return true;
}

std::string NewKeyText() {
  unsigned char key[crypto_secretbox_KEYBYTES];
  crypto_secretbox_keygen(key);
  std::string text = ToBase64(key, sizeof key) + "\n";
  sodium_memzero(key, sizeof key);
  return text;
}

}  // namespace

TPasswordVault::TPasswordVault(std::string keyFile) : FKeyFile(std::move(keyFile)) {
  if (sodium_init() < 0) throw qv::Exception("The encryption library cannot be initialised");
}

TPasswordVault::~TPasswordVault() {
  if (!FKey.empty()) sodium_memzero(FKey.data(), FKey.size());
}

const unsigned char* TPasswordVault::Key() {
  if (FKey.empty()) {
    std::string text = platform::ReadOrCreatePrivateFile(FKeyFile, NewKeyText);
    std::vector<unsigned char> key;
    if (!FromBase64(qv::Trim(text), key) || key.size() != crypto_secretbox_KEYBYTES)
      throw qv::Exception("The password key file \"" + FKeyFile + "\" is damaged");
    FKey.assign(key.begin(), key.end());
    sodium_memzero(key.data(), key.size());
  }
  return reinterpret_cast<const unsigned char*>(FKey.data());
}

std::string TPasswordVault::Encrypt(std::string_view plain) {
  if (plain.empty()) return {};
  std::vector<unsigned char> box(crypto_secretbox_NONCEBYTES + crypto_secretbox_MACBYTES +
                                 plain.size());
  unsigned char* nonce = box.data();
  randombytes_buf(nonce, crypto_secretbox_NONCEBYTES);
  crypto_secretbox_easy(nonce + crypto_secretbox_NONCEBYTES,
                        reinterpret_cast<const unsigned char*>(plain.data()), plain.size(), nonce,
                        Key());
  return std::string(kPrefix) + ToBase64(box.data(), box.size());
}

std::string TPasswordVault::Decrypt(std::string_view encrypted) {
  if (encrypted.empty()) return {};
  std::vector<unsigned char> box;
  if (!encrypted.starts_with(kPrefix) || !FromBase64(encrypted.substr(kPrefix.size()), box) ||
      box.size() < crypto_secretbox_NONCEBYTES + crypto_secretbox_MACBYTES)
    throw qv::Exception("The password is not in the host's encrypted form");
  size_t sealed = box.size() - crypto_secretbox_NONCEBYTES;
  std::string plain(sealed - crypto_secretbox_MACBYTES, '\0');
  if (crypto_secretbox_open_easy(reinterpret_cast<unsigned char*>(plain.data()),
                                 box.data() + crypto_secretbox_NONCEBYTES, sealed, box.data(),
                                 Key()) != 0)
    throw qv::Exception("The password cannot be decrypted with the key in \"" + FKeyFile + "\"");
  return plain;
}

}  // namespace qvhost
