#!/usr/bin/env bash
# Installs the Debian 12 packages ScanDeck needs, and only those missing.
# Quiet and quick when everything is already there.
set -euo pipefail

packages=(
  build-essential cmake pkg-config
  qtbase5-dev libqt5serialport5-dev qttools5-dev qttools5-dev-tools
  libvtk9-qt-dev libpcl-dev libpcap-dev
  xvfb xauth fonts-wqy-microhei qttranslations5-l10n
  clang libclang-rt-14-dev
  libqt5charts5-dev
  librosbag-dev libsensor-msgs-dev pluginlib-dev python3-rosbag
)

missing=()
for p in "${packages[@]}"; do
  status=$(dpkg-query -W -f='${Status}' "$p" 2>/dev/null || true)
  [[ "$status" == "install ok installed" ]] || missing+=("$p")
done
[[ ${#missing[@]} -eq 0 ]] && exit 0

echo "Installing: ${missing[*]}"
sudo=""
[[ $(id -u) -eq 0 ]] || sudo="sudo"
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq
$sudo apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
