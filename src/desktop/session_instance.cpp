#include "desktop/session_instance.hpp"

#include <gio/gio.h>

#include <cstdio>

#include "desktop/core/host_record.hpp"
#include "gtk/session_bus.hpp"

namespace korvo::desktop {
namespace {

constexpr const char* busName = "com.tessmoor.Korvo.Widgets";
constexpr const char* objectPath = "/com/tessmoor/Korvo/Widgets";
constexpr const char* interfaceXml =
    "<node><interface name='com.tessmoor.Korvo.Widgets'>"
    "<method name='Reload'/>"
    "</interface></node>";

// RequestName's answers that mean the name is ours (GIO names its flags but not these).
constexpr guint32 primaryOwner = 1;
constexpr guint32 alreadyOwner = 4;

SessionInstance& self(gpointer instance) {
  return *static_cast<SessionInstance*>(instance);
}

void onNameLost(GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar*, GVariant*,
                gpointer instance) {
  self(instance).nameLost();
}

void onMethodCall(GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar* method,
                  GVariant*, GDBusMethodInvocation* invocation, gpointer instance) {
  if (g_strcmp0(method, "Reload") == 0) {
    self(instance).reloadRequested();
    g_dbus_method_invocation_return_value(invocation, nullptr);
    return;
  }
  g_dbus_method_invocation_return_dbus_error(invocation, "org.freedesktop.DBus.Error.UnknownMethod",
                                             method);
}

const GDBusInterfaceVTable vtable{onMethodCall, nullptr, nullptr, {}};

GVariant* callBus(GDBusConnection* bus, const char* method, GVariant* parameters,
                  const char* replyType) {
  GError* error = nullptr;
  GVariant* reply = g_dbus_connection_call_sync(
      bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", method,
      parameters, G_VARIANT_TYPE(replyType), G_DBUS_CALL_FLAGS_NONE, -1, nullptr, &error);
  if (error != nullptr) {
    std::fprintf(stderr, "korvo-widgets: the session bus refused %s: %s\n", method, error->message);
    g_error_free(error);
  }
  return reply;
}

}  // namespace

SessionInstance::SessionInstance(bool replace, std::function<void()> lost,
                                 std::function<void()> reload)
    : lost_(std::move(lost)), reload_(std::move(reload)) {
  bus_ = gtk::sessionBus();
  if (bus_ != nullptr) {
    // Listen before asking, so a takeover right after the answer is not missed.
    lostSubscription_ = g_dbus_connection_signal_subscribe(
        bus_, "org.freedesktop.DBus", "org.freedesktop.DBus", "NameLost", "/org/freedesktop/DBus",
        busName, G_DBUS_SIGNAL_FLAGS_NONE, onNameLost, this, nullptr);
    // GBusNameOwnerFlags carry RequestName's own flag values.
    const guint32 flags = G_BUS_NAME_OWNER_FLAGS_ALLOW_REPLACEMENT |
                          G_BUS_NAME_OWNER_FLAGS_DO_NOT_QUEUE |
                          (replace ? G_BUS_NAME_OWNER_FLAGS_REPLACE : 0);
    GVariant* reply = callBus(bus_, "RequestName", g_variant_new("(su)", busName, flags), "(u)");
    if (reply == nullptr) {
      claim_ = Claim::noBus;
    } else {
      guint32 answer = 0;
      g_variant_get(reply, "(u)", &answer);
      g_variant_unref(reply);
      claim_ = answer == primaryOwner || answer == alreadyOwner ? Claim::owned : Claim::taken;
    }
  }
  if (claim_ == Claim::taken) {
    if (GVariant* owner =
            callBus(bus_, "GetConnectionUnixProcessID", g_variant_new("(s)", busName), "(u)")) {
      guint32 pid = 0;
      g_variant_get(owner, "(u)", &pid);
      g_variant_unref(owner);
      ownerProcess_ = pid;
    }
    return;
  }
  if (claim_ == Claim::owned) {
    GDBusNodeInfo* node = g_dbus_node_info_new_for_xml(interfaceXml, nullptr);
    registration_ = g_dbus_connection_register_object(bus_, objectPath, node->interfaces[0],
                                                      &vtable, this, nullptr, nullptr);
    g_dbus_node_info_unref(node);
  }
  if (const auto problem = HostRecord::write()) {
    std::fprintf(stderr, "korvo-widgets: %s; `korvo-widgets reload` will not find this host\n",
                 problem->c_str());
  }
}

SessionInstance::~SessionInstance() {
  if (claim_ != Claim::taken) HostRecord::erase();
  if (bus_ == nullptr) return;
  if (registration_ != 0) g_dbus_connection_unregister_object(bus_, registration_);
  if (lostSubscription_ != 0) g_dbus_connection_signal_unsubscribe(bus_, lostSubscription_);
  if (claim_ == Claim::owned) {
    if (GVariant* reply = callBus(bus_, "ReleaseName", g_variant_new("(s)", busName), "(u)")) {
      g_variant_unref(reply);
    }
  }
  g_dbus_connection_flush_sync(bus_, nullptr, nullptr);
}

void SessionInstance::nameLost() {
  if (claim_ != Claim::owned) return;
  claim_ = Claim::taken;
  if (lost_) lost_();
}

void SessionInstance::reloadRequested() {
  if (reload_) reload_();
}

}  // namespace korvo::desktop
