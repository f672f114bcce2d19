#pragma once
// The check the writing screens make before they post: whether the network can reach a
// well-known public host. Only "not reachable" counts as offline. Main thread.

namespace ConnectionCheck {

bool isConnectionAvailable();

} // namespace ConnectionCheck
