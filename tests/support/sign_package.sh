#!/usr/bin/env bash
# sign_package.sh PACKAGE OUTPUT
# Signs a package with a certificate made for the purpose and thrown away, and verifies the signature.
set -euo pipefail
package=$1 output=$2
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

openssl req -x509 -newkey rsa:2048 -nodes -keyout "$folder/key.pem" -out "$folder/certificate.pem" \
  -days 2 -subj "/CN=A throw-away certificate" -addext extendedKeyUsage=codeSigning 2>"$folder/log" ||
  { cat "$folder/log" >&2; exit 1; }
osslsigncode sign -certs "$folder/certificate.pem" -key "$folder/key.pem" -h sha256 \
  -in "$package" -out "$output"
osslsigncode verify -CAfile "$folder/certificate.pem" -in "$output" >"$folder/log" ||
  { cat "$folder/log" >&2; exit 1; }
grep 'Signature verification' "$folder/log"
