# Sourced by the sanitized runs: how AddressSanitizer, LeakSanitizer and
# UndefinedBehaviorSanitizer report. Every program a test starts (quorvex,
# and the hosts that load the module) inherits these, so a fault in a child
# fails its test as one in the test itself does.
sanitizer_root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
export ASAN_OPTIONS="halt_on_error=1:detect_leaks=1:check_initialization_order=1"
export LSAN_OPTIONS="suppressions=$sanitizer_root/scripts/lsan-suppressions.txt:print_suppressions=0"
export UBSAN_OPTIONS="halt_on_error=1:print_stacktrace=1"
