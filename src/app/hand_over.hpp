#pragma once

namespace korvo::app {

// Replaces this process with korvo's GTK side (korvo-service: beside korvo in a build tree, in
// ../libexec/korvo/ when installed), giving it korvo's own arguments. Throws
// std::runtime_error when it cannot.
[[noreturn]] void handOver(int argc, char** argv);

}  // namespace korvo::app
