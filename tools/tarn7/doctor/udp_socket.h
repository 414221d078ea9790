#pragma once

#include <string>

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/udp.hpp>

namespace tarn7::tool {

/// Binds a UDP socket; port 0 stands for any. Throws boost::system::system_error.
inline boost::asio::ip::udp::socket BindUdp(boost::asio::io_context& context, const std::string& address,
                                            std::uint16_t port, bool shared) {
  const boost::asio::ip::udp::endpoint endpoint(boost::asio::ip::make_address(address), port);
  boost::asio::ip::udp::socket socket(context, endpoint.protocol());
  socket.set_option(boost::asio::socket_base::reuse_address(shared));
  socket.bind(endpoint);
  return socket;
}

}  // namespace tarn7::tool
