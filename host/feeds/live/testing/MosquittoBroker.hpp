#pragma once

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>

#include "host/feeds/live/testing/LiveBench.hpp"
#include "host/feeds/live/testing/Talk.hpp"

namespace vigil {

/// A real broker on a port of its own, which may be stopped and started. Its files are in the test's folder.
class MosquittoBroker {
  public:
    /// `more`: further lines of its settings.
    MosquittoBroker(std::string folder, std::string more = "allow_anonymous true\n")
        : m_folder(std::move(folder)), m_more(std::move(more)) {}
    MosquittoBroker(const MosquittoBroker&) = delete;
    MosquittoBroker& operator=(const MosquittoBroker&) = delete;
    ~MosquittoBroker() { stop(); }

    std::uint16_t port() const { return m_port; }

    /// Returns when it takes connections.
    void start() {
        const std::string settings = m_folder + "/broker.conf";
        std::ofstream(settings) << "user root\npersistence false\nmax_queued_messages 0\nlog_dest file "
                                << m_folder << "/broker.log\n"
                                << "listener " << m_port << " 127.0.0.1\n"
                                << m_more;
        std::vector<std::string> words{"mosquitto", "-c", settings};
        char* arguments[] = {words[0].data(), words[1].data(), words[2].data(), nullptr};
        ::setenv("PATH", (std::string(std::getenv("PATH")) + ":/usr/sbin").c_str(), 1);
        posix_spawn_file_actions_t quiet;
        posix_spawn_file_actions_init(&quiet);
        posix_spawn_file_actions_addopen(&quiet, 2, "/dev/null", O_WRONLY, 0);
        ASSERT_EQ(::posix_spawnp(&m_process, "mosquitto", &quiet, nullptr, arguments, environ), 0)
            << "the package mosquitto is needed";
        posix_spawn_file_actions_destroy(&quiet);
        for (int i = 0; i < 2000 && !Talk(m_port).connected(); ++i)
            sleepFor(5);
        ASSERT_TRUE(Talk(m_port).connected()) << fileText(m_folder + "/broker.log");
    }
    void stop(int signal = SIGTERM) {
        if (m_process <= 0) return;
        ::kill(m_process, signal);
        ::waitpid(m_process, nullptr, 0);
        m_process = -1;
    }
    void freeze(bool frozen) const { ::kill(m_process, frozen ? SIGSTOP : SIGCONT); }

    /// With the program mosquitto_pub; `more` are further words for it.
    void publish(const std::string& topic, const std::string& payload, const std::string& more = "") const {
        std::ofstream(m_folder + "/payload", std::ios::binary) << payload;
        const std::string command = "mosquitto_pub -h 127.0.0.1 -p " + std::to_string(m_port) + " -t '" +
                                    topic + "' -f '" + m_folder + "/payload' " + more;
        ASSERT_EQ(std::system(command.c_str()), 0) << command;
    }

  private:
    static std::string fileText(const std::string& path) {
        std::ifstream file(path);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    const std::string m_folder, m_more;
    const std::uint16_t m_port = freePort();
    pid_t m_process = -1;
};

/// In that folder: ca.pem, and server.pem with server.key for these names. Made by openssl.
inline void makeCertificates(const std::string& folder,
                             const std::string& names = "DNS:localhost,IP:127.0.0.1") {
    std::ofstream(folder + "/names") << "subjectAltName=" << names << "\n";
    const std::string quiet = " 2>>" + folder + "/openssl.log";
    const std::string curve = "-newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes ";
    for (const std::string& command :
         {"openssl req -x509 " + curve + "-days 2 -subj /CN=Test -keyout ca.key -out ca.pem" + quiet,
          "openssl req " + curve + "-subj /CN=localhost -keyout server.key -out server.csr" + quiet,
          "openssl x509 -req -in server.csr -CA ca.pem -CAkey ca.key -CAcreateserial -days 2 -extfile names "
          "-out server.pem" +
              quiet})
        ASSERT_EQ(std::system(("cd " + folder + " && " + command).c_str()), 0) << command;
}

}  // namespace vigil
